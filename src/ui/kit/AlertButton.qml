import QtQuick

// A button of an alert: a filled capsule.
Pressable {
    id: control

    property bool destructive: false
    property bool prominent: false

    readonly property color ink: destructive ? Theme.systemRed : prominent ? "white" : Theme.label
    readonly property color face: prominent ? Theme.systemBlue : Theme.fill

    implicitHeight: Math.max(48, Theme.scaled(17) + 26)
    ringRadius: height / 2 + 3

    background: Rectangle {
        radius: height / 2
        antialiasing: true
        color: control.face
        opacity: control.down ? 0.6 : 1
    }
    contentItem: Label {
        text: control.text
        weight: control.prominent || control.destructive ? Theme.semibold : Theme.medium
        color: control.ink
        horizontalAlignment: Text.AlignHCenter
        elide: Text.ElideMiddle
        leftPadding: 12
        rightPadding: 12
        Accessible.ignored: true
    }
}
