import QtQuick

// The face of a row: a rectangle of which the upper or the lower corners are round.
Item {
    id: root

    property color color: "white"
    property real topRadius: 0
    property real bottomRadius: 0

    Accessible.ignored: true

    Rectangle {
        anchors.fill: parent
        radius: Math.max(root.topRadius, root.bottomRadius)
        antialiasing: radius > 0
        color: root.color
    }
    // Squares the half that is not round.
    Rectangle {
        visible: (root.topRadius > 0) !== (root.bottomRadius > 0)
        width: parent.width
        height: parent.height / 2
        y: root.topRadius > 0 ? parent.height - height : 0
        color: root.color
    }
}
