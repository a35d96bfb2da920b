import QtQuick
import Sweepwright.Kit
import Sweepwright.Welcome

// The greeting card over the dimmed tabs.
FocusScope {
    id: root

    focus: true

    required property WelcomeViewController screen
    // Of the cross-dissolve, 0 to 1.
    property real shown: 1

    opacity: shown

    Rectangle {
        anchors.fill: parent
        color: "#80000000"
    }

    Item {
        id: card
        anchors.centerIn: parent
        width: Math.min(root.width - 40, 380)
        height: Math.min(content.implicitHeight, root.height - 48)
        Accessible.role: Accessible.Dialog
        Accessible.name: root.screen.greeting

        BoxShadow {
            radius: 32
            offsetY: 16
            blur: 48
            strength: 0.3
        }
        Rectangle {
            anchors.fill: parent
            radius: 32
            antialiasing: true
            color: Theme.elevatedBackground
        }

        Flickable {
            id: scroller
            anchors.fill: parent
            contentHeight: content.implicitHeight
            interactive: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds
            clip: interactive

            Column {
                id: content
                width: parent.width
                padding: 24
                topPadding: 28
                spacing: 12
                readonly property real inner: width - 2 * padding

                Item {
                    width: content.inner
                    height: 72
                    GradientFill {
                        id: tile
                        anchors.centerIn: parent
                        width: 72
                        height: 72
                        radius: 18
                        startColor: Qt.rgba(0.2, 0.6, 1.0, 1)
                        endColor: Theme.systemIndigo
                    }
                    Symbol {
                        anchors.centerIn: tile
                        name: "sparkles"
                        size: 42
                        color: "white"
                    }
                }
                Label {
                    width: content.inner
                    topPadding: 4
                    text: root.screen.greeting
                    size: 24
                    weight: Theme.bold
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    Accessible.role: Accessible.Heading
                }
                Label {
                    width: content.inner
                    text: root.screen.subtitle
                    size: 15
                    lineHeight: 1.1
                    color: Theme.secondaryLabel
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                }
                Rectangle {
                    width: content.inner
                    height: notice.implicitHeight + 28
                    radius: 18
                    antialiasing: true
                    color: Theme.faded(Theme.systemOrange, Theme.dark ? 0.16 : 0.11)
                    Symbol {
                        id: noticeMark
                        x: 14
                        y: 15
                        name: "info.circle.fill"
                        size: 18
                        color: Theme.systemOrange
                    }
                    Label {
                        id: notice
                        x: 40
                        y: 14
                        width: parent.width - 54
                        text: root.screen.notice
                        size: 13
                        lineHeight: 1.2
                        color: Theme.faded(Theme.label, 0.8)
                        wrapMode: Text.Wrap
                    }
                }
                Item {
                    width: 1
                    height: 2
                }
                LinkButton {
                    objectName: "websiteButton"
                    text: root.screen.websiteTitle
                    symbol: "safari.fill"
                    startColor: Qt.rgba(0.2, 0.6, 1.0, 1)
                    endColor: Qt.rgba(0.25, 0.47, 0.95, 1)
                    onClicked: root.screen.websiteButtonTapped()
                }
                LinkButton {
                    objectName: "wechatButton"
                    text: root.screen.wechatTitle
                    symbol: "message.fill"
                    startColor: Qt.rgba(0.16, 0.75, 0.42, 1)
                    endColor: Qt.rgba(0.05, 0.6, 0.36, 1)
                    onClicked: root.screen.wechatButtonTapped()
                }
                LinkButton {
                    objectName: "githubButton"
                    text: root.screen.githubTitle
                    symbol: "star.fill"
                    startColor: Qt.rgba(0.42, 0.42, 0.5, 1)
                    endColor: Qt.rgba(0.24, 0.24, 0.3, 1)
                    onClicked: root.screen.githubButtonTapped()
                }
                AlertButton {
                    objectName: "closeButton"
                    width: content.inner
                    text: root.screen.closeTitle
                    focus: true
                    onClicked: root.screen.closeButtonTapped()
                }
            }
        }
    }

    component LinkButton: GradientButton {
        width: content.inner
        implicitHeight: 46
        size: 15
        shadowStrength: 0.22
        shadowOffset: 4
        shadowBlur: 10
    }
}
