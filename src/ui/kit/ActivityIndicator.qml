import QtQuick
import Sweepwright.Kit

// A ring of eight strokes of which one after another lights up.
Item {
    id: root

    property bool running: true
    property bool large: false
    property color color: Theme.secondaryLabel
    property string accessibleName: ""
    property int step: 0

    implicitWidth: large ? 36 : 20
    implicitHeight: implicitWidth
    visible: running
    Accessible.role: Accessible.Animation
    Accessible.name: accessibleName
    Accessible.ignored: !running

    Timer {
        // With reduced motion it still tells that something goes on, only more slowly.
        interval: Appearance.reducedMotion ? 400 : 100
        repeat: true
        running: root.running && root.visible
        onTriggered: root.step = (root.step + 1) % 8
    }

    Repeater {
        model: 8
        Item {
            required property int index
            anchors.fill: parent
            rotation: index * 45
            opacity: 1 - 0.1 * ((root.step - index + 8) % 8)
            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                width: parent.width * 0.105
                height: parent.height * 0.29
                radius: width / 2
                antialiasing: true
                color: root.color
            }
        }
    }
}
