import QtQuick

// Shown around what the keyboard is at.
Rectangle {
    property bool shown: false

    anchors.fill: parent
    anchors.margins: -3
    visible: shown
    color: "transparent"
    border.width: 2.5
    border.color: Theme.faded(Theme.systemBlue, 0.8)
    radius: 8
    Accessible.ignored: true
}
