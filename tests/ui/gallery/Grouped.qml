import QtQuick
import Sweepwright.Gallery
import Sweepwright.Kit

NavigationPage {
    id: page

    required property GalleryScreen screen

    controller: screen
    color: Theme.groupedBackground
    flickable: list

    ListModel {  // qmllint disable
        id: rows
        Component.onCompleted: {
            const make = (section, key, symbol, hue, accessory, value, first, last) => append({
                section: section, key: key, symbol: symbol, tint: hue, accessory: accessory,
                value: value, first: first, last: last});
            make("", "Language", "globe", "#007aff", "disclosure", "English", true, true);
            make("Storage Settings", "Show Hidden Files", "eye.slash.fill", "#5856d6", "switch", "", true, false);
            make("Storage Settings", "Large File Threshold", "doc.text.fill", "#ff9500", "disclosure", "50 MB", false, false);
            make("Storage Settings", "Custom Paths", "folder.badge.plus", "#34c759", "disclosure", "", false, true);
            make("Clean Records", "Clean History", "clock.arrow.circlepath", "#30b0c7", "disclosure", "", true, false);
            make("Clean Records", "Clean Statistics", "chart.bar.fill", "#ff2d55", "disclosure", "", false, true);
            make("Clean Protection", "Clean Whitelist", "checkmark.shield.fill", "#34c759", "disclosure", "", true, false);
            make("Clean Protection", "Path Whitelist", "lock.shield.fill", "#8e8e93", "disclosure", "", false, true);
        }
    }

    GroupedList {
        id: list
        topInset: page.topInset
        bottomInset: page.bottomInset
        model: rows
        sectionTitle: section => section.length > 0 ? page.screen.text(section) : ""
        onScrolled: offsetY => page.screen.scrolling.didScroll(offsetY)
        delegate: TableRow {
            id: row
            required property var model
            required property int index
            grouped: true
            first: model.first
            last: model.last
            title: page.screen.text(model.key)
            subtitle: page.screen.text(model.key + " Description")
            symbol: model.symbol
            symbolColor: model.tint
            accessory: model.accessory
            value: model.value
            onClicked: page.screen.note("row " + index)
            onSwitched: on => { row.on = on; page.screen.note("switched " + on); }
        }
    }
}
