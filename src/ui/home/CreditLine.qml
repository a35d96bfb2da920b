import QtQuick
import Sweepwright.Home
import Sweepwright.Kit

// Who made this, and where to find it.
Column {
    id: root

    required property ViewController screen

    spacing: 2

    Label {
        objectName: "developerHandle"
        width: parent.width
        text: root.screen.developerHandle
        size: 12
        color: Theme.secondaryLabel
        horizontalAlignment: Text.AlignHCenter
        elide: Text.ElideRight
    }
    Pressable {
        objectName: "creditLink"
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width, implicitWidth)
        padding: 4
        text: "GitHub: " + root.screen.repositoryAddress
        opacity: down ? 0.5 : 1
        Accessible.role: Accessible.Link
        onClicked: root.screen.creditLinkTapped()

        contentItem: Row {
            Label {
                id: before
                text: "GitHub: "
                size: 12
                color: Theme.secondaryLabel
                Accessible.ignored: true
            }
            Label {
                width: Math.min(implicitWidth, root.width - 8 - before.width)
                text: root.screen.repositoryAddress
                size: 12
                color: Theme.systemBlue
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }
}
