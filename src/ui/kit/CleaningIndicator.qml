import QtQuick
import Sweepwright.Kit

// Rings that spread and fade, one after another.
Item {
    id: root

    objectName: "cleaningIndicator"
    anchors.centerIn: parent
    width: 80
    height: 80

    Repeater {
        model: 3
        Rectangle {
            id: ring
            required property int index
            anchors.fill: parent
            radius: width / 2
            antialiasing: true
            color: "transparent"
            border.width: 3
            border.color: Theme.systemBlue
            // Where nothing is to move, they stand within each other.
            scale: Appearance.reducedMotion ? 0.4 + 0.3 * index : 1
            opacity: Appearance.reducedMotion ? 0.8 - 0.25 * index : 0

            SequentialAnimation {
                running: !Appearance.reducedMotion
                PauseAnimation { duration: 600 * ring.index }
                ParallelAnimation {
                    loops: Animation.Infinite
                    NumberAnimation {
                        target: ring
                        property: "scale"
                        from: 0.3
                        to: 1
                        duration: 2000
                        easing.type: Easing.OutQuad
                    }
                    NumberAnimation {
                        target: ring
                        property: "opacity"
                        from: 0.8
                        to: 0
                        duration: 2000
                        easing.type: Easing.OutQuad
                    }
                }
            }
        }
    }
}
