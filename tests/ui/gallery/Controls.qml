import QtQuick
import Sweepwright.Gallery
import Sweepwright.Kit

NavigationPage {
    id: page

    required property GalleryScreen screen

    controller: screen
    flickable: pane

    ScrollPane {
        id: pane
        topInset: page.topInset
        bottomInset: page.bottomInset
        spacing: 16
        onScrolled: offsetY => page.screen.scrolling.didScroll(offsetY)

        SegmentedControl {
            objectName: "segments"
            width: parent.width
            titles: [page.screen.text("User Apps") + " (12)", page.screen.text("System Apps") + " (48)"]
            onActivated: index => { currentIndex = index; page.screen.note("segment " + index); }
        }
        SearchField {
            objectName: "search"
            width: parent.width
            placeholder: page.screen.text("Search Apps")
            cancelTitle: page.screen.text("Cancel")
            onEdited: text => page.screen.note("search " + text)
        }
        GradientButton {
            objectName: "scan"
            width: parent.width
            text: page.screen.text("Scan Junk Files")
            symbol: "magnifyingglass"
            onClicked: page.screen.note("scan")
        }
        GradientButton {
            objectName: "clean"
            width: parent.width
            implicitHeight: 56
            radius: 28
            size: 18
            weight: Theme.bold
            text: page.screen.text("One-Click Clean All")
            startColor: Qt.rgba(1.0, 0.3, 0.3, 1)
            endColor: Qt.rgba(0.9, 0.2, 0.4, 1)
            shadowOffset: 8
            shadowStrength: 0.4
            releaseDuration: 250
            releaseDamping: 0.5
            releaseVelocity: 1.0
            onClicked: page.screen.note("clean")
        }
        GradientButton {
            width: parent.width
            enabled: false
            text: page.screen.text("Scanning...")
        }
        Row {
            spacing: 24
            Switch {
                objectName: "switch"
                accessibleName: page.screen.text("Show Hidden Files")
                onToggled: page.screen.note(checked ? "on" : "off")
            }
            Switch { checked: true; accessibleName: "on" }
            Switch { enabled: false; checked: true; accessibleName: "disabled" }
            ActivityIndicator { anchors.verticalCenter: parent.verticalCenter }
            ActivityIndicator { large: true; anchors.verticalCenter: parent.verticalCenter }
        }
        InputField {
            objectName: "field"
            width: parent.width
            placeholder: page.screen.text("Path (e.g., /var/mobile/Library/Caches/MyApp)")
        }
        ProgressLine { width: parent.width; value: 0.42 }
        Label { text: page.screen.text("Clean Items"); size: 20; weight: Theme.bold }
        Label { text: page.screen.text("Clean Items"); size: 34; weight: Theme.bold }
        Label {
            width: parent.width
            text: page.screen.text("Cache Rebound Note")
            size: 13
            color: Theme.secondaryLabel
            wrapMode: Text.Wrap
        }
    }
}
