import QtQuick

// The thin mark at the right that says where in its content a Flickable is.
Item {
    id: root

    required property Flickable flickable
    property real topInset: 0
    property real bottomInset: 0

    readonly property real track: flickable.height - topInset - bottomInset - 8
    readonly property real share: Math.min(1, flickable.visibleArea.heightRatio)

    anchors.fill: parent
    visible: share < 0.999 && track > 40
    Accessible.ignored: true

    Rectangle {
        x: parent.width - width - 3
        y: root.topInset + 4 + Math.max(0, Math.min(1 - root.share, root.flickable.visibleArea.yPosition)) * root.track
        width: 3
        height: Math.max(36, root.share * root.track)
        radius: 1.5
        color: Theme.dark ? "#80ffffff" : "#59000000"
        opacity: root.flickable.moving ? 1 : 0
        Behavior on opacity {
            NumberAnimation {
                duration: Theme.duration(root.flickable.moving ? 80 : 500)
            }
        }
    }
}
