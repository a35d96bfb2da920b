import QtQuick

// Frosted glass over live content: heavily blurred, tinted, with a hairline. A clean translucent
// fill where there are no shaders.
Item {
    id: root

    required property Item source
    required property point position
    property real radius: height / 2
    property bool live: true
    // Laid over the blur.
    property color tint: Theme.faded(Theme.dark ? "#28282c" : "#f9f9fb", 0.4)
    readonly property bool shaded: GraphicsInfo.api !== GraphicsInfo.Software

    Accessible.ignored: true

    Loader {
        anchors.fill: parent
        active: root.shaded
        sourceComponent: Item {
            id: frost

            readonly property real margin: 16

            Backdrop {
                id: backdrop
                source: root.source
                sourceRect: Qt.rect(root.position.x - frost.margin, root.position.y - frost.margin,
                                    root.width + 2 * frost.margin, root.height + 2 * frost.margin)
                live: root.live
                heavy: true
            }

            ShaderEffect {
                property Item blurred: backdrop.blurredTexture
                property real radius: root.radius
                property real saturation: 1.7
                // The ultra-thin material under the tint.
                property color material: Theme.dark ? "#73202024" : "#80ffffff"
                property color tint: root.tint
                property size extent: Qt.size(width, height)
                property size pane: Qt.size(root.width, root.height)
                property size captured: Qt.size(backdrop.sourceRect.width, backdrop.sourceRect.height)

                anchors.fill: parent
                anchors.margins: -2
                fragmentShader: "qrc:/qt/qml/Sweepwright/Kit/shaders/frost.frag.qsb"
            }
        }
    }

    Rectangle {
        anchors.fill: parent
        visible: !root.shaded
        radius: root.radius
        color: Theme.dark ? "#eb2a2a2e" : "#f2fbfbfd"
    }

    Rectangle {
        anchors.fill: parent
        radius: root.radius
        color: "transparent"
        border.width: 0.5
        border.color: Theme.dark ? "#29ffffff" : "#1f000000"
    }
}
