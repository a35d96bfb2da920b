import QtQuick

// What lies behind an item, as textures: as it is, and blurred. It follows whatever moves there.
// Draws nothing itself. Works only with shaders: use it under a Loader that asks GraphicsInfo.
Item {
    id: root

    // What is behind. It may not hold this item.
    required property Item source
    // The part of it that is captured, in its coordinates.
    required property rect sourceRect
    // Off while nothing of it can be seen.
    property bool live: true
    // Texture pixels for a point; less is quicker and softer. Behind glass nobody sees more than
    // one and a half, and at two every frame takes a fifth longer.
    property real density: Math.min(1.5, Screen.devicePixelRatio)

    readonly property Item sharpTexture: capture
    readonly property Item blurredTexture: full

    readonly property size pixels: Qt.size(Math.max(8, Math.ceil(sourceRect.width * density)),
                                           Math.max(8, Math.ceil(sourceRect.height * density)))
    readonly property size halfPixels: Qt.size(Math.ceil(pixels.width / 2), Math.ceil(pixels.height / 2))
    readonly property size quarterPixels: Qt.size(Math.ceil(pixels.width / 4), Math.ceil(pixels.height / 4))
    readonly property size eighthPixels: Qt.size(Math.ceil(pixels.width / 8), Math.ceil(pixels.height / 8))
    // The heavier blur halves once more.
    property bool heavy: false

    width: sourceRect.width
    height: sourceRect.height
    Accessible.ignored: true

    ShaderEffectSource {
        id: capture
        sourceItem: root.source
        sourceRect: root.sourceRect
        textureSize: root.pixels  // qmllint disable type
        live: root.live
        visible: false
        smooth: true
        width: root.width
        height: root.height
    }

    component Pass: ShaderEffect {
        property Item source
        property size from
        property size to
        property real step: 1
        property vector2d texel: Qt.vector2d(step / from.width, step / from.height)

        width: root.width
        height: root.height
        visible: false
        layer.enabled: true
        layer.smooth: true
        layer.textureSize: to  // qmllint disable type
    }
    component Down: Pass {
        fragmentShader: "qrc:/qt/qml/Sweepwright/Kit/shaders/downsample.frag.qsb"
    }
    component Up: Pass {
        step: 0.5
        fragmentShader: "qrc:/qt/qml/Sweepwright/Kit/shaders/upsample.frag.qsb"
    }

    Down {
        id: half
        source: capture
        from: root.pixels
        to: root.halfPixels
    }
    Down {
        id: quarter
        source: half
        from: root.halfPixels
        to: root.quarterPixels
    }
    Down {
        id: eighth
        source: root.heavy ? quarter : null
        from: root.quarterPixels
        to: root.eighthPixels
        layer.enabled: root.heavy
    }
    Up {
        id: quarterAgain
        source: root.heavy ? eighth : null
        from: root.eighthPixels
        to: root.quarterPixels
        layer.enabled: root.heavy
    }
    Up {
        id: full
        source: root.heavy ? quarterAgain : quarter
        from: root.quarterPixels
        to: root.halfPixels
    }
}
