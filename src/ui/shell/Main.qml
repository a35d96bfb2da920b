import QtQuick
import Sweepwright.Kit
import Sweepwright.Shell

Window {
    id: window

    required property SceneDelegate scene

    width: scene.pad ? 820 : 390
    height: scene.pad ? 1180 : 844
    minimumWidth: 320
    minimumHeight: 480
    visible: true
    title: "Sweepwright"
    color: Theme.background

    ShellView {
        anchors.fill: parent
        scene: window.scene
    }
}
