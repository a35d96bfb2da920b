import QtQuick
import Sweepwright.History
import Sweepwright.Kit

// What was cleaned and when, in one group; a swipe deletes.
NavigationPage {
    id: page

    required property CleanHistoryViewController screen

    controller: screen
    color: Theme.groupedBackground
    flickable: list

    GroupedList {
        id: list
        objectName: "historyList"
        topInset: page.topInset
        bottomInset: page.bottomInset
        visible: !page.screen.empty
        model: page.screen.rows
        sectionTitle: () => page.screen.header
        onScrolled: offsetY => page.screen.scrolling.didScroll(offsetY)
        onScrollEnded: offsetY => page.screen.scrolling.didEnd(offsetY)
        delegate: TableRow {
            required property var model
            required property int index
            objectName: "entry" + index
            grouped: true
            first: index === 0
            last: index === list.count - 1
            title: model.title
            titleSize: 16
            titleWeight: Theme.medium
            subtitle: model.subtitle
            symbol: "checkmark.circle.fill"
            symbolColor: Theme.systemGreen
            symbolTile: false
            actions: [{title: page.screen.deleteTitle, symbol: "trash.fill", color: Theme.systemRed}]
            onClicked: page.screen.didSelectRow(index)
            onActionTriggered: page.screen.deleteRow(index)
            Keys.onDeletePressed: page.screen.deleteRow(index)
        }
    }
    Label {
        objectName: "emptyStateLabel"
        anchors.centerIn: parent
        width: parent.width - 80
        visible: page.screen.empty
        text: page.screen.emptyStateLabel
        size: 16
        color: Theme.secondaryLabel
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
}
