import QtQuick
import QtQuick.Templates as T

// A column of things that scrolls under a page's bars.
Flickable {
    id: root

    property real topInset: 0
    property real bottomInset: 0
    default property alias items: column.data
    property alias spacing: column.spacing
    property real sideMargin: Theme.margin
    // On wide windows the column does not grow beyond this.
    property real maximumWidth: 640

    readonly property real offsetY: contentY - originY

    signal scrolled(real offsetY)
    signal scrollEnded(real offsetY)

    anchors.fill: parent
    topMargin: topInset
    bottomMargin: bottomInset
    contentHeight: column.implicitHeight
    contentWidth: width
    boundsBehavior: Flickable.DragAndOvershootBounds
    flickDeceleration: 2600
    pixelAligned: false
    onOffsetYChanged: scrolled(offsetY)
    onMovementEnded: scrollEnded(offsetY)

    // Brings what the keyboard has reached into sight.
    function reveal(item: Item): void {
        const top = item.mapToItem(contentItem, 0, 0).y;
        const low = contentY + topInset;
        const high = contentY + height - bottomInset - item.height;
        if (top < low) contentY = top - topInset - 8;
        else if (top > high) contentY = top + item.height + bottomInset - height + 8;
    }

    function revealFocus(): void {
        const item = root.Window.activeFocusItem as T.Control;
        if (!item || !item.visualFocus) return;
        for (let above = item.parent; above; above = above.parent)
            if (above === column) return root.reveal(item);
    }

    Connections {
        target: root.Window.window
        function onActiveFocusItemChanged(): void {
            root.revealFocus();
        }
    }

    Column {
        id: column
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(root.width - 2 * root.sideMargin, root.maximumWidth)
    }

    ScrollMark {
        parent: root.parent
        flickable: root
        topInset: root.topInset
        bottomInset: root.bottomInset
    }
}
