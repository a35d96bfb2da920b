import QtQuick
import Sweepwright.Presentation

// A screen inside a navigation stack: its bar with the title, small or large, and its buttons, over
// the screen's content. Content that scrolls gives its Flickable, which keeps clear of the bars.
FocusScope {
    id: page

    focus: true

    required property ScreenController controller
    // Set by the stack.
    property bool canGoBack: false
    property string backTitle: ""
    property real safeTop: 0
    property real safeBottom: 0

    // The content that scrolls under the bar. ListPane and ScrollPane take the insets by themselves.
    property Flickable flickable: null
    // Stands in place of the small title.
    property Component titleView: null
    // Lies under the bar and scrolls away with the content's top: a search field.
    property Component accessory: null
    property real accessoryHeight: 0
    property color color: Theme.background

    readonly property real barHeight: safeTop + 52
    readonly property bool large: controller.prefersLargeTitles
    readonly property real largeHeight: large ? Theme.scaled(34) + 18 : 0
    // What the bar covers at rest.
    readonly property real topInset: barHeight + largeHeight + accessoryHeight
    readonly property real bottomInset: safeBottom
    // How far the content has gone under the bar.
    readonly property real scrolled: flickable ? flickable.contentY - flickable.originY + flickable.topMargin : 0
    readonly property real collapse: large ? Math.max(0, Math.min(1, (scrolled - largeHeight + 24) / 16)) : 1

    signal back

    default property alias content: body.data

    // Alone reachable for a screen reader while on top.
    Accessible.role: Accessible.Pane
    Accessible.name: controller.title

    Rectangle {
        anchors.fill: parent
        color: page.color
    }

    Item {
        id: body
        anchors.fill: parent
    }

    // Content dissolves under the bar.
    Rectangle {
        width: parent.width
        height: page.barHeight + 18
        opacity: Math.max(0, Math.min(1, (page.scrolled - (page.large ? page.largeHeight - 24 : 0)) / 16))
        visible: opacity > 0
        gradient: Gradient {
            GradientStop { position: 0.0; color: page.color }
            GradientStop { position: 0.62; color: Theme.faded(page.color, 0.92) }
            GradientStop { position: 1.0; color: Theme.faded(page.color, 0) }
        }
    }

    Item {
        width: parent.width
        y: page.barHeight
        height: Math.max(0, page.topInset - page.barHeight - Math.max(0, page.scrolled))
        clip: page.scrolled > 0
        visible: height > 0

        Label {
            x: Theme.margin + 4
            y: 4 - page.scrolled
            width: parent.width - 2 * x
            visible: page.large
            text: page.controller.title
            size: 34
            weight: Theme.bold
            opacity: 1 - page.collapse
            elide: Text.ElideRight
            // Pulled down it swells a little, from its left end.
            transformOrigin: Item.Left
            scale: 1 + Math.max(0, Math.min(0.08, -page.scrolled / 800))
            Accessible.role: Accessible.Heading
        }
        Loader {
            x: Theme.margin
            y: page.largeHeight - page.scrolled
            width: parent.width - 2 * Theme.margin
            height: page.accessoryHeight
            active: page.accessory !== null
            sourceComponent: page.accessory
        }
    }

    Item {
        id: bar
        y: page.safeTop
        width: parent.width
        height: page.barHeight - page.safeTop
        Accessible.role: Accessible.ToolBar
        Accessible.name: page.controller.title

        TextButton {
            id: backButton
            objectName: "backButton"
            x: 4
            anchors.verticalCenter: parent.verticalCenter
            visible: page.canGoBack
            width: visible ? Theme.touch : 0
            symbol: "chevron.left"
            accessibleName: page.backTitle
            onClicked: page.back()
        }
        Loader {
            id: titleLoader
            anchors.centerIn: parent
            width: Math.min(implicitWidth, sideRoom)
            readonly property real sideRoom: parent.width - 2 * Math.max(backButton.width, rightButton.width) - 24
            active: page.titleView !== null
            sourceComponent: page.titleView
        }
        Label {
            anchors.centerIn: parent
            width: Math.min(implicitWidth, titleLoader.sideRoom)
            visible: page.titleView === null
            text: page.controller.title
            size: 17
            weight: Theme.semibold
            opacity: page.collapse
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
            Accessible.ignored: opacity < 0.5 || text.length === 0
        }
        TextButton {
            id: rightButton
            objectName: "rightBarButton"
            readonly property BarButtonItem item: page.controller.rightBarButtonItem
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            visible: item !== null
            width: visible ? implicitWidth : 0
            text: item ? item.title : ""
            symbol: item ? item.symbol : ""
            enabled: item ? item.enabled : false
            size: Theme.inBar(17)
            weight: item && item.prominent ? Theme.semibold : Theme.normal
            onClicked: item.trigger()
        }
    }
}
