import QtQuick
import Sweepwright.Home
import Sweepwright.Kit

// The first tab: the ring, the scan button, the cards, and the button that cleans everything.
NavigationPage {
    id: page

    required property ViewController screen

    controller: screen
    flickable: pane

    ScrollPane {
        id: pane
        objectName: "homePane"
        topInset: page.topInset
        bottomInset: page.bottomInset
        maximumWidth: 560
        onScrolled: offsetY => page.screen.scrolling.didScroll(offsetY)
        onScrollEnded: offsetY => page.screen.scrolling.didEnd(offsetY)

        Space { height: 4 }
        StorageRing {
            anchors.horizontalCenter: parent.horizontalCenter
            screen: page.screen
        }
        Space { height: 20 }
        StorageFigures {
            width: parent.width
            info: page.screen.storageInfo
        }
        Space { height: 8 }
        Note {
            objectName: "capacityNote"
            text: page.screen.storageCapacityNote
            size: 11
            color: Theme.tertiaryLabel
        }
        Space { height: 4 }
        Note {
            objectName: "reboundNote"
            text: page.screen.cacheReboundNote
            size: 10
            color: Theme.systemRed
        }
        Space { height: 20 }
        GradientButton {
            objectName: "scanButton"
            width: parent.width
            text: page.screen.scanTitle
            enabled: !page.screen.scanning
            onClicked: page.screen.scanButtonTapped()
        }
        Space { height: 28 }
        Label {
            objectName: "cleanItemsTitle"
            width: parent.width
            leftPadding: 4
            text: page.screen.cleanItemsTitle
            size: 20
            weight: Theme.bold
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        Space { height: 12 }
        Column {
            width: parent.width
            spacing: 12

            Repeater {
                model: page.screen.cards  // qmllint disable type
                CleanItemCard {
                    required property int index
                    objectName: "card" + index
                    width: parent ? parent.width : 0
                    screen: page.screen
                }
            }
        }
        Space { height: 28 }
        GradientButton {
            objectName: "cleanAllButton"
            width: parent.width
            implicitHeight: 56
            radius: 28
            text: page.screen.cleanAllTitle
            size: 18
            weight: Theme.bold
            startColor: Qt.rgba(1.0, 0.3, 0.3, 1)
            endColor: Qt.rgba(0.9, 0.2, 0.4, 1)
            shadowOffset: 8
            shadowBlur: 16
            shadowStrength: 0.4
            releaseDuration: 250
            releaseDamping: 0.5
            releaseVelocity: 1.0
            onClicked: page.screen.cleanAllTapped()
        }
        Space { height: 24 }
        CreditLine {
            width: parent.width
            screen: page.screen
        }
        Space { height: 8 }
    }

    Rectangle {
        anchors.centerIn: parent
        width: 84
        height: 84
        radius: 20
        antialiasing: true
        visible: page.screen.scanning
        color: Theme.faded(Theme.elevatedBackground, 0.94)
        border.width: 0.5
        border.color: Theme.separator

        BoxShadow {
            z: -1
            radius: 20
            offsetY: 8
            blur: 24
            strength: 0.16
        }
        ActivityIndicator {
            objectName: "scanIndicator"
            anchors.centerIn: parent
            large: true
            running: page.screen.scanning
            accessibleName: page.screen.scanTitle
        }
    }

    component Space: Item {
        width: 1
    }
    // Its lines are about equally long, so that no word is left alone on the last.
    component Note: Label {
        id: note
        readonly property int lines: Math.ceil(oneRow.advanceWidth / parent.width)
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width, oneRow.advanceWidth / lines * 1.08 + 2 * font.pixelSize)
        lineHeight: 1.1
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap

        readonly property TextMetrics oneRow: TextMetrics {
            font: note.font
            text: note.text
        }
    }
}
