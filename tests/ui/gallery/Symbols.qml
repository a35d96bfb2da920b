import QtQuick
import Sweepwright.Gallery
import Sweepwright.Kit

NavigationPage {
    id: page

    required property GalleryScreen screen
    readonly property list<string> names: ["house.fill", "app.badge.fill", "gearshape.fill",
        "tray.full.fill", "clock.arrow.circlepath", "globe.badge.chevron.backward",
        "list.bullet.rectangle.portrait.fill", "chevron.down", "chevron.up", "chevron.left",
        "chevron.right", "trash.fill", "checkmark.shield.fill", "minus.circle.fill", "globe",
        "eye.slash.fill", "doc.text.fill", "folder.badge.plus", "chart.bar.fill",
        "lock.shield.fill", "info.circle.fill", "questionmark.circle.fill", "hand.raised.fill",
        "person.circle.fill", "safari.fill", "message.fill", "paperplane.fill", "star.fill",
        "checkmark.circle.fill", "checkmark", "plus", "xmark", "xmark.circle.fill",
        "magnifyingglass", "circle", "sparkles", "arrow.up.forward"]

    controller: screen

    Flow {
        id: flow
        anchors.fill: parent
        anchors.margins: 16
        anchors.topMargin: page.topInset + 8
        spacing: 6
        Repeater {
            model: page.names
            Item {
                id: cell
                required property string modelData
                required property int index
                width: (flow.width - 18) / 4
                height: 70
                Row {
                    anchors.horizontalCenter: parent.horizontalCenter
                    spacing: 10
                    Symbol { name: cell.modelData; size: 17; anchors.verticalCenter: parent.verticalCenter }
                    Symbol { name: cell.modelData; size: 28; color: Theme.systemBlue }
                }
                Label {
                    y: 36
                    width: parent.width
                    text: cell.modelData
                    size: 9
                    color: Theme.secondaryLabel
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.WrapAnywhere
                    maximumLineCount: 2
                }
            }
        }
    }
}
