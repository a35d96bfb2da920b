import QtQuick
import Sweepwright.Apps
import Sweepwright.Kit

NavigationPage {
    id: page

    required property AppListViewController screen
    readonly property bool editing: screen.isEditingMode

    controller: screen
    flickable: list
    accessoryHeight: Math.max(36, Theme.scaled(17) + 16) + 12
    accessory: Item {
        SearchField {
            id: field
            objectName: "searchField"
            y: 4
            width: parent.width
            placeholder: page.screen.searchPlaceholder
            cancelTitle: page.screen.cancelTitle
            enabled: !page.editing
            onEdited: text => page.screen.filterAppsWithSearchText(text)
            onCancelled: page.screen.filterAppsWithSearchText("")
        }
        Shortcut {
            sequences: [StandardKey.Find]
            enabled: page.screen.visible && !page.editing
            onActivated: field.forceActiveFocus(Qt.ShortcutFocusReason)
        }
    }
    titleView: SegmentedControl {
        id: segments
        objectName: "segments"
        implicitWidth: page.screen.segmentsWidth(Math.max(...titles.map(title => metrics.advanceWidth(title))), page.width)
        titles: page.screen.segmentTitles
        currentIndex: page.screen.selectedSegment
        size: Theme.inBar(11)
        selectedColor: Theme.systemBlue
        selectedTextColor: "white"
        enabled: !page.editing
        onActivated: index => page.screen.selectedSegment = index

        FontMetrics {
            id: metrics
            font.family: Theme.family
            font.pixelSize: Theme.scaled(segments.size)
        }
    }

    AppListPane {
        id: list
        objectName: "appList"
        topInset: page.topInset
        bottomInset: page.editing ? toolbar.height : page.bottomInset
        model: page.screen.apps
        loading: page.screen.loading && !page.screen.refreshing
        emptyText: page.screen.emptyText
        emptySymbol: page.screen.isSearching ? "magnifyingglass" : "app.badge.fill"
        editing: page.editing
        animated: page.screen.animatesChanges
        onScrolled: offsetY => page.screen.scrolling.didScroll(offsetY)
        onScrollEnded: offsetY => page.screen.scrolling.didEnd(offsetY)
        onRowSelected: row => page.screen.didSelectRow(row)
        onActionTriggered: (row, action) => page.screen.performSwipeAction(row, action)

        header: Item {
            width: list.width
            height: hint.implicitHeight + 16
            Label {
                id: hint
                x: 16
                width: parent.width - 32
                anchors.verticalCenter: parent.verticalCenter
                height: 20
                text: page.screen.swipeHint
                size: 12
                color: Theme.secondaryLabel
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideRight
            }
        }
    }
    Connections {
        target: page.screen
        function onSwipeActionEnded(): void {
            list.closeRow();
        }
        function onListReplaced(): void {
            list.closeRow();
            list.toTop();
        }
    }
    PullToRefresh {
        flickable: list
        topInset: page.topInset
        refreshing: page.screen.refreshing
        onRefresh: page.screen.refreshApps()
    }

    Toolbar {
        id: toolbar
        objectName: "toolbar"
        anchors.bottom: parent.bottom
        width: parent.width
        visible: opacity > 0
        opacity: page.editing ? 1 : 0
        enabled: page.editing
        bottomInset: page.bottomInset
        accessibleName: page.screen.selectionCountText
        Behavior on opacity {
            NumberAnimation { duration: Theme.duration(300) }
        }

        TextButton {
            id: selectAll
            objectName: "selectAllButton"
            anchors.verticalCenter: parent.verticalCenter
            text: page.screen.selectAllTitle
            size: Theme.inBar(17)
            onClicked: page.screen.toggleSelectAll()
        }
        Label {
            anchors.left: selectAll.right
            anchors.right: clean.left
            anchors.verticalCenter: parent.verticalCenter
            height: parent.height
            text: page.screen.selectionCountText
            size: Theme.inBar(16)
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            maximumLineCount: 2
            fontSizeMode: Text.Fit
            minimumPixelSize: 11
            elide: Text.ElideRight
        }
        TextButton {
            id: clean
            objectName: "cleanButton"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            leftPadding: 12
            rightPadding: 12
            topPadding: 6
            bottomPadding: 6
            text: page.screen.cleanButtonTitle
            size: Theme.inBar(15)
            weight: Theme.medium
            color: Theme.systemRed
            enabled: page.screen.cleanButtonEnabled
            onClicked: page.screen.cleanSelectedApps()
        }
    }
}
