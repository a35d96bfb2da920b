import QtQuick
import Sweepwright.Presentation

// An alert: title, message, remark, text field, spinner, buttons.
FocusScope {
    id: root

    focus: true

    required property AlertController alert
    readonly property var actions: alert.actions  // qmllint disable type
    property real shown: 1
    property real safeTop: 0
    property real safeBottom: 0

    readonly property real cardWidth: Math.min(width - 48, alert.article ? 480 : 300)
    // Two short titles stand side by side.
    readonly property bool sideBySide: actions.length === 2
        && actions.every(action => metrics.advanceWidth(action.title) < (cardWidth - 32 - 8) / 2 - 24)

    FontMetrics {
        id: metrics
        font.family: Theme.family
        font.pixelSize: Theme.scaled(17)
        font.weight: Theme.semibold
    }

    Item {
        id: card

        anchors.centerIn: parent
        width: root.cardWidth
        height: Math.min(content.implicitHeight, root.height - root.safeTop - root.safeBottom - 48)
        opacity: Math.min(1, root.shown * 1.4)
        scale: 1.12 - 0.12 * root.shown
        Accessible.role: Accessible.AlertMessage
        Accessible.name: root.alert.title
        Accessible.description: root.alert.message

        BoxShadow {
            radius: 30
            offsetY: 14
            blur: 40
            strength: 0.22
        }
        Rectangle {
            anchors.fill: parent
            radius: 30
            antialiasing: true
            color: Theme.elevatedBackground
            border.width: Theme.dark ? 0.5 : 0
            border.color: "#24ffffff"
        }
        MouseArea {
            anchors.fill: parent
        }

        Column {
            id: content
            width: parent.width
            padding: 16
            spacing: 16

            Flickable {
                id: words
                objectName: "alertWords"
                width: content.width - 32
                height: Math.min(contentHeight, root.height - root.safeTop - root.safeBottom - 48 - fixed.height - 48)
                contentHeight: phrases.implicitHeight
                clip: contentHeight > height
                boundsBehavior: Flickable.StopAtBounds
                interactive: contentHeight > height
                activeFocusOnTab: interactive
                Keys.onUpPressed: contentY = Math.max(0, contentY - 40)
                Keys.onDownPressed: contentY = Math.min(contentHeight - height, contentY + 40)

                Column {
                    id: phrases
                    width: parent.width
                    topPadding: 6
                    leftPadding: 8
                    rightPadding: 8
                    spacing: root.alert.article ? 12 : 8

                    Label {
                        width: parent.width - 16
                        visible: text.length > 0
                        text: root.alert.title
                        size: 17
                        weight: Theme.semibold
                        wrapMode: Text.Wrap
                        Accessible.role: Accessible.Heading
                    }
                    Loader {
                        width: parent.width - 16
                        active: root.alert.article
                        visible: active
                        sourceComponent: ArticleText {
                            text: root.alert.message
                        }
                    }
                    Label {
                        width: parent.width - 16
                        visible: !root.alert.article && text.trim().length > 0
                        text: root.alert.message.trim()
                        size: 15
                        lineHeight: 1.12
                        color: Theme.faded(Theme.label, 0.75)
                        wrapMode: Text.Wrap
                    }
                    Label {
                        width: parent.width - 16
                        visible: text.length > 0
                        text: root.alert.tip
                        size: 12
                        color: Theme.systemGray
                        wrapMode: Text.Wrap
                    }
                }
                ScrollMark {
                    parent: words
                    flickable: words
                }
            }

            Column {
                id: fixed
                width: content.width - 32
                spacing: 12

                Loader {
                    width: parent.width
                    active: root.alert.busy
                    visible: active
                    sourceComponent: Item {
                        implicitHeight: 56
                        ActivityIndicator {
                            anchors.centerIn: parent
                            large: true
                            accessibleName: root.alert.title
                        }
                    }
                }
                Loader {
                    width: parent.width
                    active: root.alert.busy && root.alert.progress >= 0
                    visible: active
                    sourceComponent: ProgressLine {
                        value: root.alert.progress
                        accessibleName: root.alert.title
                    }
                }
                Loader {
                    width: parent.width
                    active: root.alert.hasTextField
                    visible: active
                    focus: root.alert.hasTextField
                    sourceComponent: InputField {
                        focus: true
                        placeholder: root.alert.placeholder
                        text: root.alert.text
                        onTextEdited: root.alert.text = text
                        onAccepted: root.chooseDefault()
                        Component.onCompleted: forceActiveFocus()
                    }
                }
                Grid {
                    id: buttons
                    width: parent.width
                    visible: root.actions.length > 0
                    columns: root.sideBySide ? 2 : 1
                    spacing: 8
                    // A pair has its cancel button at the left, a column at the bottom.
                    Repeater {
                        model: root.ordered
                        AlertButton {
                            required property AlertAction modelData
                            required property int index
                            width: root.sideBySide ? (buttons.width - 8) / 2 : buttons.width
                            text: modelData.title
                            destructive: modelData.style === AlertAction.Destructive
                            prominent: modelData === root.preferred
                            focus: !root.alert.hasTextField && modelData === root.preferred
                            onClicked: root.alert.choose(modelData)
                        }
                    }
                }
                Item {
                    width: 1
                    height: 1
                    visible: root.actions.length === 0 && !root.alert.busy
                }
            }
        }
    }

    readonly property AlertAction cancelling: alert.cancelAction()
    readonly property var ordered: {
        const others = actions.filter(action => action !== cancelling);
        if (!cancelling) return others;
        return sideBySide ? [cancelling, ...others] : [...others, cancelling];
    }
    // What Return chooses: never something that destroys.
    readonly property AlertAction preferred:
        actions.find(action => action.style === AlertAction.Default)
        ?? (cancelling && actions.length > 0 ? cancelling : null)

    function chooseDefault(): void {
        if (preferred) alert.choose(preferred);
    }
}
