import QtQuick

// A text in the theme's type: `size` in points before the desktop's text size applies.
Text {
    property real size: 17
    property int weight: Font.Normal

    color: Theme.label
    font.family: size >= 20 ? Theme.displayFamily : Theme.family
    font.pixelSize: Theme.scaled(size)
    font.weight: weight
    font.letterSpacing: size >= 20 ? -0.2 : 0
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: !visible || text.length === 0
}
