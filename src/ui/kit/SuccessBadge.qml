import QtQuick
import Sweepwright.Kit

// Says that something is done: comes on a spring, stays a moment, fades and shrinks, and is gone.
Rectangle {
    id: root

    property var completion: null

    objectName: "successBadge"
    anchors.centerIn: parent
    width: 100
    height: 100
    radius: 50
    antialiasing: true
    color: Theme.faded(Theme.systemGreen, 0.9)
    scale: arrival.value * (1 - 0.9 * leaving.gone)
    opacity: 1 - leaving.gone

    Symbol {
        x: 25
        y: 25
        size: 50
        name: "checkmark"
        color: "white"
    }

    SpringMotion {
        id: arrival
        duration: 300
        damping: 0.6
        velocity: 0.8
        onSettled: if (to === 1) leaving.start()
    }
    SequentialAnimation {
        id: leaving
        property real gone: 0
        PauseAnimation { duration: 800 }
        NumberAnimation {
            target: leaving
            property: "gone"
            to: 1
            duration: Theme.duration(300)
            easing.type: Easing.InQuad
        }
        onFinished: {
            if (root.completion) root.completion.call();
            root.destroy();
        }
    }
    Component.onCompleted: {
        arrival.jump(0.1);
        arrival.to = 1;
    }
}
