import QtQuick

// A rounded fill that runs from the upper left corner to the lower right one. Without shaders it
// runs from left to right.
Item {
    id: root

    property real radius: 0
    property color startColor
    property color endColor

    Accessible.ignored: true

    Loader {
        anchors.fill: parent
        sourceComponent: GraphicsInfo.api === GraphicsInfo.Software ? plain : diagonal
    }

    Component {
        id: diagonal
        ShaderEffect {
            property size extent: Qt.size(root.width, root.height)
            property real radius: Math.min(root.radius, root.height / 2)
            property color startColor: root.startColor
            property color endColor: root.endColor
            fragmentShader: "qrc:/qt/qml/Sweepwright/Kit/shaders/gradient.frag.qsb"
        }
    }
    Component {
        id: plain
        Rectangle {
            radius: Math.min(root.radius, height / 2)
            gradient: Gradient {
                orientation: Gradient.Horizontal
                GradientStop { position: 0; color: root.startColor }
                GradientStop { position: 1; color: root.endColor }
            }
        }
    }
}
