import QtQuick
import QtQuick.Templates as T

// What all buttons share: touch, mouse and keyboard, focus ring, a name for the screen reader.
T.AbstractButton {
    id: control

    property real ringRadius: 8
    property string accessibleName: text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: accessibleName
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    FocusRing {
        shown: control.visualFocus
        radius: control.ringRadius
    }
}
