import QtQuick
import Sweepwright.Kit

// A big filled button with a diagonal gradient, a coloured shadow, and a spring under the finger.
Pressable {
    id: control

    property color startColor: Qt.rgba(0.2, 0.6, 1.0, 1)
    property color endColor: Qt.rgba(0.3, 0.5, 0.95, 1)
    property real radius: height / 2
    property real size: 16
    property int weight: Theme.semibold
    property string symbol: ""
    property color shadowColor: endColor
    property real shadowOffset: 6
    property real shadowBlur: 12
    property real shadowStrength: 0.35
    // The press: down in 0.1 s, back on a spring.
    property real pressedScale: 0.95
    property int releaseDuration: 200
    property real releaseDamping: 0.6
    property real releaseVelocity: 0.8

    ringRadius: radius + 3
    leftPadding: 16
    rightPadding: 16
    implicitHeight: 50
    opacity: enabled ? 1 : 0.5
    transform: Scale {
        origin.x: control.width / 2
        origin.y: control.height / 2
        xScale: press.value
        yScale: press.value
    }

    SpringMotion {
        id: press
        to: control.down ? control.pressedScale : 1
        duration: control.down ? 100 : control.releaseDuration
        damping: control.down ? 1 : control.releaseDamping
        velocity: control.down ? 0 : control.releaseVelocity
    }

    background: Item {
        BoxShadow {
            radius: control.radius
            offsetY: control.shadowOffset
            blur: control.shadowBlur
            strength: control.shadowStrength
            color: control.shadowColor
        }
        GradientFill {
            anchors.fill: parent
            radius: control.radius
            startColor: control.startColor
            endColor: control.endColor
        }
    }

    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight
        Row {
            id: row
            anchors.centerIn: parent
            spacing: 8
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                visible: control.symbol.length > 0
                name: control.symbol
                size: control.size + 4
                color: "white"
            }
            Label {
                text: control.text
                width: Math.min(implicitWidth, control.availableWidth
                                - (control.symbol.length > 0 ? control.size + 12 : 0))
                anchors.verticalCenter: parent.verticalCenter
                size: control.size
                weight: control.weight
                color: "white"
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }
}
