import QtQuick

// A button that is only its text or symbol, as in navigation bars and toolbars.
Pressable {
    id: control

    property string symbol: ""
    property real size: 17
    property int weight: Theme.normal
    property color color: Theme.systemBlue

    padding: 8
    implicitHeight: Theme.touch
    opacity: !enabled ? 0.35 : (down ? 0.4 : 1)
    Behavior on opacity {
        NumberAnimation { duration: Theme.duration(control.down ? 0 : 180) }
    }

    contentItem: Item {
        implicitWidth: control.symbol.length > 0 ? 24 : label.implicitWidth
        implicitHeight: label.implicitHeight

        Symbol {
            anchors.centerIn: parent
            visible: control.symbol.length > 0
            name: control.symbol
            size: 24
            color: control.color
        }
        Label {
            id: label
            anchors.fill: parent
            visible: control.symbol.length === 0
            text: control.text
            size: control.size
            weight: control.weight
            color: control.color
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }
}
