import QtQuick
import Sweepwright.Bar
import Sweepwright.Kit
import Sweepwright.Presentation
import Sweepwright.Shell

// The window's content: the selected tab, the floating bar over it, and what is presented over both.
FocusScope {
    id: shell

    required property SceneDelegate scene
    readonly property var controllers: scene.tabBarController.viewControllers  // qmllint disable type
    // Parts of the window that its frame or the device's shape covers.
    property real safeTop: 0
    property real safeBottom: 0

    focus: true

    FocusScope {
        id: tabs
        anchors.fill: parent
        focus: !shell.scene.presenter.active
        // What lies under an alert is out of reach, for keyboard and screen reader, too.
        enabled: !shell.scene.presenter.active

        Rectangle {
            anchors.fill: parent
            color: Theme.background
        }

        Repeater {
            model: shell.controllers
            delegate: NavigationStack {
                required property NavigationController modelData
                required property int index
                readonly property bool selected: index === shell.scene.tabBarController.selectedIndex

                anchors.fill: parent
                navigation: modelData
                visible: selected
                focus: selected
                safeTop: shell.safeTop
                // Content ends clear of the bar.
                safeBottom: shell.safeBottom + shell.scene.tabBarHeight + 20
            }
        }
    }

    TabBarView {
        id: bar
        objectName: "tabBar"
        bar: shell.scene.liquidGlassTabBar
        source: tabs
        enabled: !shell.scene.presenter.active && !shell.scene.tabBarIsHidden
        width: shell.scene.tabBarWidth(shell.width)
        height: shell.scene.tabBarHeight
        x: (shell.width - width) / 2
        y: shell.height - shell.safeBottom + lift.value - height
        visible: y < shell.height + 30
        live: y < shell.height
        z: 1000

        SpringMotion {
            id: lift
            to: shell.scene.tabBarBottomConstant
            duration: 300
            damping: 0.8
        }
    }

    PresenterHost {
        objectName: "presenterHost"
        anchors.fill: parent
        z: 2000
        presenter: shell.scene.presenter
        pad: shell.scene.pad
        safeTop: shell.safeTop
        safeBottom: shell.safeBottom
    }

    Repeater {
        model: shell.controllers.length
        Item {
            id: choice
            required property int index
            Shortcut {
                sequence: "Ctrl+" + (choice.index + 1)
                enabled: !shell.scene.presenter.active
                onActivated: shell.scene.tabBarController.selectedIndex = choice.index
            }
        }
    }
    Shortcut {
        sequences: [StandardKey.Quit]
        onActivated: Qt.quit()
    }
}
