import QtQuick
import Sweepwright.Gallery
import Sweepwright.Kit

// Loud content, to see what the bar makes of it.
NavigationPage {
    id: page

    required property GalleryScreen screen

    controller: screen
    flickable: pane

    ScrollPane {
        id: pane
        objectName: "pane"
        topInset: page.topInset
        bottomInset: page.bottomInset
        spacing: 10
        onScrolled: offsetY => page.screen.scrolling.didScroll(offsetY)
        Repeater {
            model: 30
            Rectangle {
                id: stripe
                required property int index
                width: parent.width
                height: 64
                radius: 18
                gradient: Gradient {
                    orientation: Gradient.Horizontal
                    GradientStop { position: 0; color: Qt.hsla((stripe.index * 0.21) % 1, 0.85, 0.55, 1) }
                    GradientStop { position: 1; color: Qt.hsla((stripe.index * 0.21 + 0.3) % 1, 0.85, 0.55, 1) }
                }
                Label {
                    anchors.centerIn: parent
                    text: page.screen.text("Cache Files") + " " + stripe.index + "  1,024 MB"
                    size: 20
                    weight: Theme.bold
                    color: "white"
                }
            }
        }
    }
}
