import QtQuick
import Sweepwright.Presentation

// The words and choices of an action sheet, without its cancel action, as a list that scrolls when
// it is long.
FocusScope {
    id: root

    required property AlertController alert
    property real maximumHeight: 600
    readonly property var choices: alert.actions.filter(action => action.style !== AlertAction.Cancel)  // qmllint disable type
    // Where a choice is long, as a path is, all of them take a smaller face.
    readonly property bool wordy: choices.some(action => action.title.length > 28)
    readonly property bool hasWords: alert.title.length > 0 || alert.message.length > 0

    implicitHeight: Math.min(maximumHeight, words.height + list.contentHeight)

    Column {
        id: words
        width: parent.width
        visible: root.hasWords
        height: visible ? implicitHeight : 0
        topPadding: 18
        bottomPadding: 14
        leftPadding: 20
        rightPadding: 20
        spacing: 4
        Label {
            width: parent.width - 40
            visible: text.length > 0
            text: root.alert.title
            size: 14
            weight: Theme.semibold
            color: Theme.secondaryLabel
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            Accessible.role: Accessible.Heading
        }
        Label {
            width: parent.width - 40
            visible: text.length > 0
            text: root.alert.message
            size: 13
            color: Theme.secondaryLabel
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }
    }

    ListView {
        id: list
        anchors.top: words.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        clip: contentHeight > height
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        model: root.choices
        focus: true
        keyNavigationEnabled: true
        Accessible.role: Accessible.List
        Accessible.name: root.alert.title
        delegate: Pressable {
            id: choice
            required property AlertAction modelData
            required property int index
            readonly property bool destructive: modelData.style === AlertAction.Destructive
            width: ListView.view.width
            height: Math.max(56, caption.implicitHeight + 24)
            text: modelData.title
            focus: index === 0
            ringRadius: 12
            Accessible.selected: modelData.current
            onClicked: root.alert.choose(modelData)
            background: Rectangle {
                color: choice.down ? Theme.fill : "transparent"
                Rectangle {
                    width: parent.width
                    height: 0.5
                    visible: choice.index > 0 || root.hasWords
                    color: Theme.separator
                }
            }
            contentItem: Item {
                Label {
                    id: caption
                    anchors.centerIn: parent
                    width: parent.width - (choice.modelData.current ? 96 : 40)
                    text: choice.text
                    size: root.wordy ? 16 : 18
                    weight: choice.modelData.current ? Theme.semibold : Theme.normal
                    color: choice.destructive ? Theme.systemRed : Theme.systemBlue
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    maximumLineCount: 3
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }
                Symbol {
                    anchors.right: parent.right
                    anchors.rightMargin: 20
                    anchors.verticalCenter: parent.verticalCenter
                    visible: choice.modelData.current
                    name: "checkmark"
                    size: 20
                    color: Theme.systemBlue
                }
            }
        }
        ScrollMark {
            parent: list
            flickable: list
        }
    }
}
