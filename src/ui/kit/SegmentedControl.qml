import QtQuick
import Sweepwright.Kit

// A few choices side by side of which one holds.
FocusScope {
    id: root

    property list<string> titles
    property int currentIndex: 0
    property real size: 13
    property color selectedColor: Theme.dark ? "#636366" : "white"
    property color selectedTextColor: Theme.label
    readonly property real segmentWidth: titles.length > 0 ? (width - 4) / titles.length : 0

    // Only what a person does.
    signal activated(int index)

    implicitHeight: Math.max(32, Theme.scaled(size) + 14)
    implicitWidth: 250
    activeFocusOnTab: true
    opacity: enabled ? 1 : 0.4
    Accessible.role: Accessible.PageTabList
    Accessible.name: titles.length > 0 ? titles[currentIndex] ?? "" : ""

    function choose(index: int): void {
        if (index < 0 || index >= titles.length || index === currentIndex) return;
        activated(index);
    }

    Keys.onLeftPressed: choose(currentIndex - 1)
    Keys.onRightPressed: choose(currentIndex + 1)

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        antialiasing: true
        color: Theme.tertiaryFill
    }

    SpringMotion {
        id: slide
        to: root.currentIndex
        duration: 300
        damping: 0.85
    }

    Rectangle {
        x: 2 + slide.value * root.segmentWidth
        y: 2
        width: root.segmentWidth
        height: parent.height - 4
        radius: height / 2
        antialiasing: true
        color: root.selectedColor
        BoxShadow {
            z: -1
            radius: parent.radius
            offsetY: 2
            blur: 6
            strength: 0.12
        }
    }

    Repeater {
        model: root.titles
        Item {
            id: segment

            required property string modelData
            required property int index
            readonly property bool selected: index === root.currentIndex

            x: 2 + index * root.segmentWidth
            width: root.segmentWidth
            height: root.height
            Accessible.role: Accessible.PageTab
            Accessible.name: modelData
            Accessible.selectable: true
            Accessible.selected: selected
            Accessible.onPressAction: root.choose(index)

            Label {
                anchors.fill: parent
                anchors.margins: 6
                text: segment.modelData
                size: root.size
                weight: segment.selected ? Theme.semibold : Theme.medium
                color: segment.selected ? root.selectedTextColor : Theme.label
                horizontalAlignment: Text.AlignHCenter
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 9
                elide: Text.ElideMiddle
                Accessible.ignored: true
            }
            TapHandler {
                gesturePolicy: TapHandler.ReleaseWithinBounds
                onTapped: root.choose(segment.index)
            }
        }
    }

    FocusRing {
        shown: root.activeFocus && root.keyboardFocus
        radius: root.height / 2 + 3
    }

    // A ring only for who came by keyboard.
    property bool keyboardFocus: false
    onActiveFocusChanged: keyboardFocus = activeFocus && !pointed.hovered
    HoverHandler { id: pointed }
}
