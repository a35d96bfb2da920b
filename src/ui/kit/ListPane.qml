import QtQuick

// The list under a page's bars: keeps clear of them, reports its scrolling, can be walked through
// with the keyboard. Plain; GroupedList draws the rows as cards.
ListView {
    id: root

    // Space that the page's bars cover; the page sets them.
    property real topInset: 0
    property real bottomInset: 0
    // The row whose swipe actions are open.
    property Item openRow: null

    signal scrolled(real offsetY)
    signal scrollEnded(real offsetY)

    anchors.fill: parent
    topMargin: topInset
    bottomMargin: bottomInset
    boundsBehavior: Flickable.DragAndOvershootBounds
    flickDeceleration: 2600
    maximumFlickVelocity: 5200
    pixelAligned: false
    cacheBuffer: 240
    reuseItems: true
    focus: true
    activeFocusOnTab: true
    keyNavigationEnabled: true
    highlightMoveDuration: 0
    highlightResizeDuration: 0
    currentIndex: -1
    Accessible.role: Accessible.List

    // The offset as it counts for the bars: 0 when the first row begins at the very top.
    readonly property real offsetY: contentY - originY
    onOffsetYChanged: scrolled(offsetY)
    onMovementEnded: scrollEnded(offsetY)
    onMovementStarted: closeRow()

    function closeRow(): void {
        if (openRow) openRow.close();  // qmllint disable type
    }

    // Clear of the bars, which the list's own positioning does not know.
    function toTop(): void {
        forceLayout();
        cancelFlick();
        contentY = originY - topMargin;
    }
    function toBottom(): void {
        // What lies between is not laid out yet, so that its height is a guess until there.
        positionViewAtEnd();
        contentY = Math.max(originY - topMargin, originY + contentHeight - height + bottomMargin);
    }

    Keys.onPressed: event => {
        if (event.key === Qt.Key_PageDown) contentY = Math.max(originY - topMargin, Math.min(contentY + height * 0.8, originY + contentHeight - height + bottomMargin));
        else if (event.key === Qt.Key_PageUp) contentY = Math.max(contentY - height * 0.8, originY - topMargin);
        else if (event.key === Qt.Key_Home) toTop();
        else if (event.key === Qt.Key_End) toBottom();
        else return;
        event.accepted = true;
    }

    ScrollMark {
        parent: root.parent
        flickable: root
        topInset: root.topInset
        bottomInset: root.bottomInset
    }
}
