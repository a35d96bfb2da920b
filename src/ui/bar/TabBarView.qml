import QtQuick
import Sweepwright.Bar
import Sweepwright.Kit

// Draws a LiquidGlassTabBar over what scrolls under it.
FocusScope {
    id: root

    required property LiquidGlassTabBar bar
    // What lies under the bar, in whose coordinates the bar's own position counts.
    required property Item source
    // Off while the bar is out of sight.
    property bool live: true

    Accessible.role: Accessible.PageTabList
    Accessible.name: "Sweepwright"

    onWidthChanged: bar.width = width
    onHeightChanged: bar.height = height
    Component.onCompleted: {
        bar.width = width;
        bar.height = height;
    }

    BoxShadow {
        radius: root.height / 2
        offsetY: -2
        blur: 10
        strength: 0.1
    }
    // The glass is thick and stands off what it covers.
    BoxShadow {
        visible: root.bar.glass
        radius: root.height / 2
        offsetY: 8
        blur: 26
        strength: Theme.dark ? 0.34 : 0.12
    }

    Loader {
        anchors.fill: parent
        sourceComponent: root.bar.glass ? glass : frosted
    }
    Component {
        id: glass
        GlassPane {
            source: root.source
            position: Qt.point(root.x, root.y)
            live: root.live
        }
    }
    Component {
        id: frosted
        FrostedPane {
            source: root.source
            position: Qt.point(root.x, root.y)
            live: root.live
        }
    }

    // Behind the icons: the platform's own mark of the selected item, or the slider.
    Loader {
        anchors.fill: parent
        sourceComponent: root.bar.glass ? mark : slider
    }
    Component {
        id: mark
        Item {
            SpringMotion {
                id: markX
                to: root.bar.sliderCenterX
                duration: 450
                damping: 0.78
                animated: root.bar.sliderAnimated
            }
            Rectangle {
                readonly property real room: root.width / root.bar.count
                // It stretches with its speed, like a drop.
                readonly property real lag: Math.min(18, Math.abs(markX.to - markX.value) * 0.16)
                width: room - 8 + lag
                height: root.height - 8 - lag * 0.3
                x: root.width / 2 + markX.value - width / 2
                   + Math.max(0, Math.min(4, -(markX.value - (root.width / 2 - room / 2) + 4)))
                y: (root.height - height) / 2
                radius: height / 2
                antialiasing: true
                color: Theme.dark ? "#24ffffff" : "#17000000"
            }
        }
    }
    Component {
        id: slider
        Item {
            SpringMotion {
                id: sliderX
                to: root.bar.sliderCenterX
                duration: 300
                damping: 0.7
                animated: root.bar.sliderAnimated
            }
            SpringMotion {
                id: sliderAlpha
                to: root.bar.sliderAlpha
                duration: root.bar.dragging ? 200 : 300
                damping: 0.7
            }
            SpringMotion {
                id: sliderScale
                to: root.bar.sliderScale
                duration: root.bar.dragging ? 200 : 300
                damping: 0.7
            }
            Item {
                width: root.bar.sliderWidth
                height: root.bar.sliderHeight
                x: (root.width - width) / 2 + sliderX.value
                y: (root.height - height) / 2
                scale: sliderScale.value
                opacity: Math.max(0, Math.min(1, sliderAlpha.value))
                BoxShadow {
                    radius: parent.height / 2
                    offsetY: 2
                    blur: 6
                    strength: 0.4
                }
                Rectangle {
                    objectName: "slider"
                    anchors.fill: parent
                    radius: height / 2
                    antialiasing: true
                    color: Theme.systemBlue
                }
            }
        }
    }

    Row {
        anchors.fill: parent
        Repeater {
            model: root.bar
            delegate: Pressable {
                id: button

                required property string title
                required property string image
                required property double itemScale
                required property int index
                readonly property bool selected: index === root.bar.selectedIndex

                objectName: "tab" + index
                width: root.width / root.bar.count
                height: root.height
                text: title
                ringRadius: height / 2
                Accessible.role: Accessible.PageTab
                Accessible.selectable: true
                Accessible.selected: selected
                onClicked: root.bar.tabBarDidSelectItem(index)
                Keys.onLeftPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                Keys.onRightPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)

                contentItem: Item {
                    scale: button.itemScale * (button.down && root.bar.glass ? 0.92 : 1)
                    Behavior on scale {
                        NumberAnimation {
                            duration: Theme.duration(200)
                            easing.type: Easing.OutCubic
                        }
                    }
                    Symbol {
                        anchors.centerIn: parent
                        name: button.image
                        size: 28
                        color: button.selected ? Theme.systemBlue
                             : root.bar.glass ? Theme.faded(Theme.label, 0.86) : Theme.faded(Theme.label, 0.62)
                    }
                }
            }
        }
    }

    DragHandler {
        id: pan
        target: null
        enabled: !root.bar.glass
        dragThreshold: 8
        readonly property real place: centroid.position.x
        property real last: 0
        onActiveChanged: {
            if (active) {
                last = place;
                root.bar.panBegan(last);
            } else {
                root.bar.panEnded(last);
            }
        }
        onPlaceChanged: {
            if (!active) return;
            last = place;
            root.bar.panChanged(last);
        }
    }
}
