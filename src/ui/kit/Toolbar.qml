import QtQuick

// A bar at the bottom of a screen; its children stand in a row.
Item {
    id: root

    default property alias content: row.data
    property real bottomInset: 0
    property string accessibleName: ""

    implicitHeight: 52 + bottomInset
    Accessible.role: Accessible.ToolBar
    Accessible.name: accessibleName

    Rectangle {
        anchors.fill: parent
        color: Theme.faded(Theme.elevatedBackground, 0.96)
        Rectangle {
            width: parent.width
            height: 0.5
            color: Theme.separator
        }
    }
    // What lies under a bar is not pressed through it.
    MouseArea {
        anchors.fill: parent
    }

    Item {
        id: row
        anchors.fill: parent
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        anchors.bottomMargin: root.bottomInset
    }
}
