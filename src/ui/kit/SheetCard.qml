import QtQuick
import Sweepwright.Presentation

// An action sheet on a phone: from the bottom edge, the cancel button apart from the choices.
FocusScope {
    id: root

    focus: true

    required property AlertController alert
    property real shown: 1
    property real safeTop: 0
    property real safeBottom: 0

    readonly property AlertAction cancelling: alert.cancelAction()

    Item {
        id: card
        readonly property real fullHeight: sheet.height + (root.cancelling ? cancelButton.height + 8 : 0)
        width: Math.min(root.width - 16, 420)
        height: fullHeight
        anchors.horizontalCenter: parent.horizontalCenter
        y: root.height - (fullHeight + 8 + root.safeBottom) * root.shown
        Accessible.role: Accessible.Dialog
        Accessible.name: root.alert.title

        MouseArea {
            anchors.fill: parent
        }
        Rectangle {
            id: sheet
            width: parent.width
            height: choices.implicitHeight
            radius: 26
            antialiasing: true
            color: Theme.elevatedBackground
            SheetActions {
                id: choices
                anchors.fill: parent
                alert: root.alert
                focus: true
                maximumHeight: root.height - root.safeTop - root.safeBottom - 120
            }
        }
        AlertButton {
            id: cancelButton
            y: sheet.height + 8
            width: parent.width
            height: Math.max(56, implicitHeight)
            visible: root.cancelling !== null
            text: root.cancelling ? root.cancelling.title : ""
            onClicked: root.alert.choose(root.cancelling)
            background: Rectangle {
                radius: 26
                antialiasing: true
                color: cancelButton.down ? Qt.darker(Theme.elevatedBackground, 1.1) : Theme.elevatedBackground
            }
            contentItem: Label {
                text: cancelButton.text
                size: 18
                weight: Theme.semibold
                color: Theme.systemBlue
                horizontalAlignment: Text.AlignHCenter
                Accessible.ignored: true
            }
        }
    }
}
