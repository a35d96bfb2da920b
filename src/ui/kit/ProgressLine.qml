import QtQuick
import Sweepwright.Kit

// How far a piece of work is, from 0 to 1.
Item {
    id: root

    property real value: 0
    property string accessibleName: ""

    implicitHeight: 6
    Accessible.role: Accessible.ProgressBar
    Accessible.name: accessibleName

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Theme.fill
        antialiasing: true
    }
    SpringMotion {
        id: filled
        to: Math.max(0, Math.min(1, root.value))
        duration: 250
        damping: 1
    }
    Rectangle {
        height: parent.height
        width: Math.max(height, filled.value * parent.width)
        radius: height / 2
        antialiasing: true
        color: Theme.systemBlue
    }
}
