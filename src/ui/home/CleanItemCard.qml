import QtQuick
import Sweepwright.Home
import Sweepwright.Kit

// A category's card: its header, and under it, when open, what is in the category.
Item {
    id: root

    required property ViewController screen
    required property CleanItemCardView modelData
    readonly property CleanItemCardView card: modelData
    // What large texts need beyond the usual header and rows.
    readonly property real headerHeight: Math.max(60, words.implicitHeight + 14)
    readonly property real rowHeight: Math.max(30, Theme.scaled(11) + 16)
    readonly property real growth: headerHeight - 60
        + (card.isExpanded ? (rowHeight - 30) * card.tableHeight / 30 : 0)

    height: card.intrinsicContentHeight + growth
    Behavior on height {
        enabled: root.ready && root.card.animated
        NumberAnimation {
            duration: Theme.duration(300)
            easing.type: Easing.InOutQuad
        }
    }
    // Not before there is something to move from.
    property bool ready: false
    Component.onCompleted: ready = true

    Accessible.role: Accessible.Grouping
    Accessible.name: card.title + ", " + card.sizeText

    BoxShadow {
        radius: 20
        offsetY: 8
        blur: 16
        strength: Theme.dark ? 0.3 : 0.07
    }
    Rectangle {
        anchors.fill: parent
        radius: 20
        antialiasing: true
        color: Theme.secondaryBackground
        border.width: 0.5
        border.color: Theme.faded(Theme.systemGray, 0.15)
    }
    MouseArea {
        objectName: "cardArea"
        anchors.fill: parent
        onClicked: mouse => received(mouse)
        // The second of two quick taps, which closes what the first has opened.
        onDoubleClicked: mouse => received(mouse)

        function received(mouse: MouseEvent): void {
            if (root.screen.gestureRecognizerShouldReceiveTouch(root.card, Qt.point(mouse.x, mouse.y)))
                root.card.tapped();
        }
    }

    Item {
        id: header
        width: parent.width
        height: root.headerHeight

        GradientFill {
            id: tile
            x: 12
            anchors.verticalCenter: parent.verticalCenter
            width: 36
            height: 36
            radius: 9
            startColor: Theme.faded(Theme.systemBlue, Theme.dark ? 0.34 : 0.2)
            endColor: Theme.faded(Theme.systemBlue, Theme.dark ? 0.2 : 0.1)

            Symbol {
                anchors.centerIn: parent
                name: root.card.icon
                size: 21
                color: Theme.systemBlue
            }
        }
        Column {
            id: words
            anchors.left: tile.right
            anchors.leftMargin: 12
            anchors.right: cleanButton.left
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            spacing: 1

            Label {
                objectName: "title"
                width: parent.width
                text: root.card.title
                size: 14
                weight: Theme.semibold
                elide: Text.ElideRight
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 11
                Accessible.ignored: true
            }
            Label {
                objectName: "size"
                width: parent.width
                text: root.card.sizeText
                size: 16
                weight: Theme.bold
                color: Theme.systemOrange
                elide: Text.ElideRight
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 11
                Accessible.ignored: true
            }
        }
        GradientButton {
            id: cleanButton
            objectName: "cleanButton"
            anchors.right: expandButton.left
            anchors.rightMargin: 2
            anchors.verticalCenter: parent.verticalCenter
            width: 60
            implicitHeight: 32
            leftPadding: 4
            rightPadding: 4
            text: root.card.cleanButtonTitle
            accessibleName: root.card.cleanButtonTitle + " " + root.card.title
            size: 12
            startColor: Theme.dark ? "#1e90ff" : "#3395ff"
            endColor: Theme.systemBlue
            shadowColor: Theme.systemBlue
            shadowOffset: 4
            shadowBlur: 8
            shadowStrength: 0.3
            pressedScale: 0.92
            releaseDamping: 0.5
            onClicked: root.card.cleanTapped()
        }
        TextButton {
            id: expandButton
            objectName: "expandButton"
            anchors.right: parent.right
            anchors.rightMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            width: 36
            padding: 0
            accessibleName: root.card.title
            onClicked: root.card.expandButtonTapped()
            Accessible.checkable: true
            Accessible.checked: root.card.isExpanded

            contentItem: Item {
                Symbol {
                    anchors.centerIn: parent
                    name: root.card.expandIcon
                    size: 18
                    color: Theme.systemGray
                }
            }
        }
    }

    // The card's edge cuts the rows off while it moves.
    Item {
        id: table
        x: 8
        y: header.height + 4
        width: parent.width - 2 * x
        height: Math.max(0, root.height - y - 12)
        clip: true
        opacity: root.card.isExpanded ? 1 : 0
        visible: opacity > 0
        Behavior on opacity {
            enabled: root.ready && root.card.animated
            NumberAnimation {
                duration: Theme.duration(300)
                easing.type: Easing.InOutQuad
            }
        }

        ListView {
            objectName: "fileTable"
            width: parent.width
            height: root.rowHeight * root.card.tableHeight / 30
            interactive: false
            reuseItems: false
            cacheBuffer: 0
            focus: false
            model: table.visible ? root.card.fileList : null
            delegate: FileRow {
                width: ListView.view.width
                height: root.rowHeight
                onClicked: root.card.didSelectRow(index)
            }
            Accessible.role: Accessible.List
            Accessible.name: root.card.title
        }
    }

    Binding {
        target: root.card
        property: "tableFrame"
        value: Qt.rect(table.x, table.y, table.width, table.height)
    }
    Binding {
        target: root.card
        property: "cleanButtonFrame"
        value: Qt.rect(cleanButton.x, cleanButton.y, cleanButton.width, cleanButton.height)
    }
}
