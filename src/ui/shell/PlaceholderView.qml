import QtQuick
import Sweepwright.Kit
import Sweepwright.Shell

NavigationPage {
    id: page

    required property PlaceholderScreen screen
    readonly property list<string> symbols: ["tray.full.fill", "globe", "chart.bar.fill",
        "paperplane.fill", "star.fill", "lock.shield.fill", "folder.badge.plus"]

    controller: screen
    flickable: list

    ListPane {
        id: list
        topInset: page.topInset
        bottomInset: page.bottomInset
        model: page.screen.rows
        onScrolled: offsetY => page.screen.scrolling.didScroll(offsetY)
        onScrollEnded: offsetY => page.screen.scrolling.didEnd(offsetY)
        delegate: TableRow {
            required property int number
            title: page.controller.title + " " + number
            subtitle: "/var/mobile/Library/Caches/" + number
            symbol: page.symbols[number % page.symbols.length]
            symbolColor: Qt.hsla((number * 0.137) % 1, 0.75, 0.55, 1)
            value: number * 7 % 100 + " MB"
            accessory: "disclosure"
        }
    }
}
