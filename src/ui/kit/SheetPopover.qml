import QtQuick
import Sweepwright.Presentation

// An action sheet on a tablet: a popover that points at what it is about. A tap beside it cancels.
FocusScope {
    id: root

    focus: true

    required property AlertController alert
    property real shown: 1
    property real safeTop: 0
    property real safeBottom: 0

    readonly property rect anchor: alert.anchor.width > 0 ? alert.anchor
        : Qt.rect(width / 2, height / 2, 1, 1)
    readonly property bool below: anchor.y + anchor.height + card.height + 24 < height - safeBottom
    readonly property bool above: !below && anchor.y - card.height - 24 > safeTop
    readonly property real middle: anchor.x + anchor.width / 2

    Item {
        id: card
        objectName: "popover"
        width: choices.wordy ? 400 : 320
        height: choices.implicitHeight
        x: Math.max(12, Math.min(root.width - width - 12, root.middle - width / 2))
        y: root.below ? root.anchor.y + root.anchor.height + 12
         : root.above ? root.anchor.y - height - 12
         : Math.max(root.safeTop + 12, (root.height - height) / 2)
        opacity: root.shown
        scale: 0.9 + 0.1 * root.shown
        transformOrigin: root.below ? Item.Top : root.above ? Item.Bottom : Item.Center
        Accessible.role: Accessible.Dialog
        Accessible.name: root.alert.title

        BoxShadow {
            radius: 20
            offsetY: 10
            blur: 40
            strength: 0.25
        }
        Rectangle {
            width: 18
            height: 18
            visible: root.below || root.above
            rotation: 45
            antialiasing: true
            x: Math.max(24, Math.min(parent.width - 42, root.middle - card.x - 9))
            y: root.below ? -8 : parent.height - 10
            color: Theme.elevatedBackground
        }
        Rectangle {
            anchors.fill: parent
            radius: 20
            antialiasing: true
            color: Theme.elevatedBackground
        }
        MouseArea {
            anchors.fill: parent
        }
        SheetActions {
            id: choices
            anchors.fill: parent
            alert: root.alert
            focus: true
            maximumHeight: Math.min(560, root.height - root.safeTop - root.safeBottom - 48)
        }
    }
}
