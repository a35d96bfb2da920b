import QtQuick
import Sweepwright.Apps
import Sweepwright.Kit

NavigationPage {
    id: page

    required property WhitelistViewController screen

    controller: screen
    flickable: list
    color: Theme.groupedBackground

    AppListPane {
        id: list
        objectName: "whitelist"
        topInset: page.topInset
        bottomInset: page.bottomInset
        model: page.screen.apps
        loading: page.screen.loading
        emptyText: page.screen.emptyText
        emptySymbol: "checkmark.shield.fill"
        grouped: true
        onScrolled: offsetY => page.screen.scrolling.didScroll(offsetY)
        onScrollEnded: offsetY => page.screen.scrolling.didEnd(offsetY)
        onActionTriggered: (row, action) => page.screen.performSwipeAction(row, action)
    }
    Connections {
        target: page.screen
        function onSwipeActionEnded(): void {
            list.closeRow();
        }
    }
}
