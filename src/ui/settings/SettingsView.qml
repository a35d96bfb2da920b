import QtQuick
import Sweepwright.Kit
import Sweepwright.Settings

// The settings as groups of rows.
NavigationPage {
    id: page

    required property SettingsViewController screen

    // A row's tile by its symbol.
    readonly property var tints: ({
        "globe": Theme.systemBlue,
        "eye.slash.fill": Theme.systemIndigo,
        "doc.text.fill": Theme.systemOrange,
        "folder.badge.plus": Theme.systemTeal,
        "clock.arrow.circlepath": Theme.systemPurple,
        "chart.bar.fill": Theme.systemPink,
        "checkmark.shield.fill": Theme.systemGreen,
        "lock.shield.fill": Theme.systemBlue,
        "info.circle.fill": Theme.systemGray,
        "questionmark.circle.fill": Theme.systemOrange,
        "hand.raised.fill": Theme.systemIndigo,
        "person.circle.fill": Theme.systemTeal,
        "safari.fill": Theme.systemBlue,
        "message.fill": Theme.systemGreen,
        "paperplane.fill": Theme.systemTeal,
        "star.fill": Theme.systemPurple
    })

    controller: screen
    color: Theme.groupedBackground
    flickable: list

    GroupedList {
        id: list
        objectName: "settingsList"
        topInset: page.topInset
        bottomInset: page.bottomInset
        model: page.screen.rows
        sectionTitle: section => page.screen.headers[Number(section)] ?? ""
        onScrolled: offsetY => page.screen.scrolling.didScroll(offsetY)
        onScrollEnded: offsetY => page.screen.scrolling.didEnd(offsetY)
        delegate: TableRow {
            id: row
            required property var model
            objectName: "row" + model.tag
            grouped: true
            first: model.first
            last: model.last
            title: model.title
            subtitle: model.subtitle
            symbol: model.icon
            symbolColor: page.tints[model.icon] ?? Theme.systemGray
            accessory: model.type
            value: model.value
            on: model.on
            selectable: model.type !== "none"
            onSwitched: on => page.screen.switchValueChanged(model.tag, on)
            onClicked: page.screen.didSelectRow(Number(model.section), model.rowInSection, cell())

            // Where the row's card is, in the window's points.
            function cell(): rect {
                return row.mapToItem(null, inset, 0, width - 2 * inset, height);
            }
        }
    }
}
