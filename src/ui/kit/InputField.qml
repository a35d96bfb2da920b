import QtQuick
import QtQuick.Templates as T

// A single line to type into.
T.TextField {
    id: field

    property string placeholder: ""

    implicitHeight: Math.max(44, Theme.scaled(16) + 24)
    leftPadding: 14
    rightPadding: 14
    verticalAlignment: TextInput.AlignVCenter
    color: Theme.label
    selectionColor: Theme.faded(Theme.systemBlue, 0.35)
    selectedTextColor: Theme.label
    selectByMouse: true
    font.family: Theme.family
    font.pixelSize: Theme.scaled(16)
    inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
    Accessible.role: Accessible.EditableText
    Accessible.name: placeholder

    background: Rectangle {
        radius: 14
        antialiasing: true
        color: Theme.tertiaryFill
        border.width: field.activeFocus ? 1.5 : 0
        border.color: Theme.systemBlue
    }
    Label {
        anchors.fill: parent
        anchors.leftMargin: 14
        anchors.rightMargin: 14
        visible: field.text.length === 0 && field.preeditText.length === 0
        text: field.placeholder
        size: 15
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: Theme.scaled(11)
        color: Theme.placeholder
        elide: Text.ElideRight
        Accessible.ignored: true
    }
}
