import QtQuick
import Sweepwright.Home
import Sweepwright.Kit

// How full the device is, as a ring with its figure in the middle.
Item {
    id: root

    required property ViewController screen
    readonly property list<color> colors: [Theme.systemGreen, Theme.systemOrange, Theme.systemRed]

    implicitWidth: 150
    implicitHeight: 150
    Accessible.role: Accessible.ProgressBar
    Accessible.name: screen.storageText.replace("\n", " ")

    function show(animated: bool): void {
        ring.setProgress(screen.storageProgress, animated);
    }

    Component.onCompleted: show(true)
    Connections {
        target: root.screen
        function onStorageChanged(): void {
            root.show(true);
        }
    }

    CircularProgressView {
        id: ring
        objectName: "storageRing"
        anchors.fill: parent
        anchors.margins: -shadowRoom
        shadowRoom: 24
        lineWidth: 12
        progressColor: root.colors[root.screen.storageColor]
    }
    Label {
        objectName: "storageRingLabel"
        anchors.centerIn: parent
        width: parent.width * 0.6
        text: root.screen.storageText
        size: 18
        weight: Theme.semibold
        maximumLineCount: 2
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 11
        horizontalAlignment: Text.AlignHCenter
        Accessible.ignored: true
    }
}
