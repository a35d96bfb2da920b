import QtQuick
import Sweepwright.Presentation

// Draws a NavigationController: pushed screens slide in from the right, popped ones out again, and
// a drag from the left edge goes back.
FocusScope {
    id: stack

    required property NavigationController navigation
    property real safeTop: 0
    property real safeBottom: 0

    clip: true
    Component.onCompleted: navigation.drawn = true

    Keys.onBackPressed: event => { event.accepted = navigation.depth > 1; navigation.pop(); }
    Keys.onPressed: event => {
        const back = event.key === Qt.Key_Left && (event.modifiers & Qt.AltModifier);
        if (!back || navigation.depth <= 1) return;
        navigation.pop();
        event.accepted = true;
    }

    // A drag that goes back: how far it is, then what becomes of it.
    function follow(share: real): void {
        const top = entries.itemAt(navigation.depth - 1) as NavigationEntry;
        const below = entries.itemAt(navigation.depth - 2) as NavigationEntry;
        top.arrival.jump(share);
        below.burial.jump(1 - share);
    }
    function letGo(back: bool): void {
        if (back) {
            navigation.pop();
            return;
        }
        (entries.itemAt(navigation.depth - 1) as NavigationEntry).arrival.to = 0;
        (entries.itemAt(navigation.depth - 2) as NavigationEntry).burial.to = 1;
    }

    Repeater {
        id: entries
        model: stack.navigation
        delegate: NavigationEntry {
            navigation: stack.navigation
            safeTop: stack.safeTop
            safeBottom: stack.safeBottom
        }
    }

    Item {
        id: edge
        width: 24
        height: stack.height
        enabled: stack.navigation.depth > 1

        DragHandler {
            target: null
            xAxis.enabled: true
            yAxis.enabled: false
            dragThreshold: 6
            readonly property real share: Math.max(0, Math.min(1, activeTranslation.x / stack.width))
            property real speed: 0

            onShareChanged: {
                if (!active || stack.navigation.depth < 2) return;
                last = share;
                stack.follow(share);
                speed = centroid.velocity.x;
            }
            onActiveChanged: {
                if (active || stack.navigation.depth < 2) return;
                stack.letGo(last > 0.5 || (last > 0.1 && speed > 400));
            }
            // The translation is gone by the time the drag has ended.
            property real last: 0
        }
    }
}
