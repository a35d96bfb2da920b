import QtQuick

// Pulling a list past its top asks for a refresh; a spinner shows while it lasts. Put it into the
// list's page as a sibling over the list.
Item {
    id: root

    required property Flickable flickable
    // Where the list's content begins when nothing is pulled.
    property real topInset: 0
    property bool refreshing: false
    property string accessibleName: ""
    readonly property real pulled: Math.max(0, -(flickable.contentY - flickable.originY) - flickable.topMargin)
    readonly property real threshold: 76
    property bool armed: false

    signal refresh

    anchors.fill: parent

    Connections {
        target: root.flickable
        function onContentYChanged(): void {
            if (root.flickable.dragging && root.pulled >= root.threshold) root.armed = true;
        }
        function onDraggingChanged(): void {
            if (root.flickable.dragging || !root.armed) return;
            root.armed = false;
            if (!root.refreshing) root.refresh();
        }
    }

    ActivityIndicator {
        anchors.horizontalCenter: parent.horizontalCenter
        y: root.topInset + Math.max(10, (root.pulled - height) / 2)
        running: root.refreshing || root.pulled > 8
        opacity: root.refreshing ? 1 : Math.min(1, root.pulled / root.threshold)
        scale: root.armed || root.refreshing ? 1.25 : 1
        accessibleName: root.accessibleName
    }
}
