import QtQuick
import Sweepwright.Kit
import Sweepwright.Presentation

// One screen of a NavigationStack, and how it comes, is covered, and goes.
FocusScope {
    id: entry

    required property NavigationController navigation
    required property ScreenController screen
    required property bool leaving
    required property string backTitle
    required property int index
    property real safeTop: 0
    property real safeBottom: 0

    readonly property bool onTop: index === navigation.depth - 1
    readonly property bool buried: index < navigation.depth - 1
    // 1: beyond the right edge, 0: in place.
    readonly property SpringMotion arrival: SpringMotion {
        duration: 400
        damping: 1
        onSettled: if (entry.leaving) entry.navigation.removeLeft()
    }
    // 1: under another screen.
    readonly property SpringMotion burial: SpringMotion {
        duration: 400
        damping: 1
    }

    width: parent ? parent.width : 0
    height: parent ? parent.height : 0
    x: arrival.value * width - burial.value * width * 0.3
    focus: onTop
    enabled: onTop
    visible: !buried || burial.value < 0.999

    Component.onCompleted: {
        burial.jump(buried ? 1 : 0);
        if (index > 0) {
            arrival.jump(1);
            arrival.to = 0;
        }
        view.setSource(screen.view, {
            screen: screen,
            canGoBack: index > 0,
            backTitle: backTitle,
            safeTop: Qt.binding(() => entry.safeTop),
            safeBottom: Qt.binding(() => entry.safeBottom)
        });
    }
    onLeavingChanged: if (leaving) arrival.to = 1
    onBuriedChanged: burial.to = buried ? 1 : 0

    BoxShadow {
        visible: entry.index > 0 && entry.arrival.value > 0
        blur: 16
        strength: 0.18
    }
    Loader {
        id: view
        anchors.fill: parent
        focus: true
    }
    Connections {
        target: view.item
        ignoreUnknownSignals: true
        function onBack(): void {
            entry.navigation.pop();
        }
    }
    Rectangle {
        anchors.fill: parent
        color: "black"
        opacity: entry.burial.value * (Theme.dark ? 0.3 : 0.1)
        visible: opacity > 0
    }
}
