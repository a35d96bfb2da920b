import QtQuick

// The soft shadow of a rounded box: fills the box it belongs to and lies behind it. Without shaders
// there is none.
Item {
    id: root

    property real radius: 0
    property real blur: 10
    property real offsetX: 0
    property real offsetY: 0
    property real strength: 0.1
    property color color: "black"

    readonly property real spread: blur * 1.5 + Math.max(Math.abs(offsetX), Math.abs(offsetY))

    anchors.fill: parent

    Loader {
        anchors.fill: parent
        anchors.margins: -root.spread
        active: GraphicsInfo.api !== GraphicsInfo.Software && root.strength > 0
        sourceComponent: ShaderEffect {
            property size extent: Qt.size(width, height)
            property size box: Qt.size(root.width, root.height)
            property vector2d shift: Qt.vector2d(root.offsetX, root.offsetY)
            property real radius: Math.min(root.radius, root.height / 2)
            property real sigma: Math.max(root.blur * 0.5, 0.5)
            property color tint: Qt.rgba(root.color.r, root.color.g, root.color.b, root.strength)
            fragmentShader: "qrc:/qt/qml/Sweepwright/Kit/shaders/shadow.frag.qsb"
        }
    }
}
