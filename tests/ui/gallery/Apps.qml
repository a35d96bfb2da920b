import QtQuick
import Sweepwright.Gallery
import Sweepwright.Kit

NavigationPage {
    id: page

    required property GalleryScreen screen
    property bool editing: false
    property int openRow: -1
    property bool refreshing: false

    controller: screen
    flickable: list
    accessoryHeight: 48
    accessory: SearchField {
        placeholder: page.screen.text("Search Apps")
        enabled: !page.editing
    }
    titleView: SegmentedControl {
        titles: [page.screen.text("User Apps") + " (12)", page.screen.text("System Apps") + " (48)"]
        size: 11
        enabled: !page.editing
    }

    ListPane {
        id: list
        objectName: "list"
        topInset: page.topInset
        bottomInset: page.bottomInset
        model: 2000
        onScrolled: offsetY => page.screen.scrolling.didScroll(offsetY)
        onScrollEnded: offsetY => page.screen.scrolling.didEnd(offsetY)
        header: Label {
            width: list.width
            height: 36
            text: page.screen.text("Swipe Left Hint")
            size: 12
            color: Theme.secondaryLabel
            horizontalAlignment: Text.AlignHCenter
        }
        delegate: TableRow {
            id: row
            required property int index
            objectName: "row" + index
            minimumHeight: 70
            title: ["Telegram", "微信", "Maps & Navigation", "Podcasts", "哔哩哔哩", "Notes"][index % 6]
            titleSize: 16
            titleWeight: Theme.medium
            subtitle: page.screen.text("Cache") + ": " + (index * 37 % 900) + " MB | " + page.screen.text("Temp") + ": 12 KB"
            symbol: "app.badge.fill"
            symbolColor: Qt.hsla((index * 0.137) % 1, 0.7, 0.55, 1)
            editing: page.editing
            selected: page.editing && index % 3 === 1
            actions: [
                {title: page.screen.text("Clean"), symbol: "trash.fill", color: Theme.systemRed},
                {title: page.screen.text("Add to Whitelist"), symbol: "checkmark.shield.fill", color: Theme.systemGreen}
            ]
            onClicked: page.screen.note("row " + index)
            onActionTriggered: action => page.screen.note("action " + action + " of " + index)
            Component.onCompleted: if (index === page.openRow) Qt.callLater(openActions)
        }
    }
    PullToRefresh {
        flickable: list
        topInset: page.topInset
        refreshing: page.refreshing
        onRefresh: page.screen.note("refresh")
    }
    Toolbar {
        anchors.bottom: parent.bottom
        width: parent.width
        visible: page.editing
        bottomInset: page.bottomInset
        TextButton {
            text: page.screen.text("Select All")
            anchors.verticalCenter: parent.verticalCenter
        }
        Label {
            anchors.centerIn: parent
            text: page.screen.text("No Apps Selected")
            size: 15
        }
        TextButton {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: page.screen.text("Clean")
            color: Theme.systemRed
        }
    }
}
