import QtQuick

// A pane of thick glass over live content; a clean translucent fill where there are no shaders.
Item {
    id: root

    // What is under the pane, and where in its coordinates the pane lies.
    required property Item source
    required property point position
    property real radius: height / 2
    property bool live: true
    property color tint: Theme.dark ? "#a01e1e22" : "#9effffff"
    readonly property bool shaded: GraphicsInfo.api !== GraphicsInfo.Software

    Accessible.ignored: true

    Loader {
        anchors.fill: parent
        active: root.shaded
        sourceComponent: Item {
            id: lens

            // Beyond the edge the lens still needs something to look at.
            readonly property real margin: 16

            Backdrop {
                id: backdrop
                source: root.source
                sourceRect: Qt.rect(root.position.x - lens.margin, root.position.y - lens.margin,
                                    root.width + 2 * lens.margin, root.height + 2 * lens.margin)
                live: root.live
                heavy: true
            }

            ShaderEffect {
                property Item sharp: backdrop.sharpTexture
                property Item blurred: backdrop.blurredTexture
                property real radius: root.radius
                property real rim: Math.min(18, root.height / 3)
                property real bend: Math.min(24, root.height / 2)
                property real saturation: Theme.dark ? 1.25 : 1.4
                property real sharpness: 0
                property real sheen: Theme.dark ? 0.42 : 0.85
                property size extent: Qt.size(width, height)
                property size pane: Qt.size(root.width, root.height)
                property size captured: Qt.size(backdrop.sourceRect.width, backdrop.sourceRect.height)
                property color tint: root.tint

                anchors.fill: parent
                anchors.margins: -2
                fragmentShader: "qrc:/qt/qml/Sweepwright/Kit/shaders/glass.frag.qsb"
            }
        }
    }

    Rectangle {
        anchors.fill: parent
        visible: !root.shaded
        radius: root.radius
        color: Theme.dark ? "#eb2a2a2e" : "#f2fbfbfd"
        border.width: 0.5
        border.color: Theme.separator
    }
}
