import QtQuick
import QtQuick.Templates as T
import Sweepwright.Kit

T.Switch {
    id: control

    property string accessibleName: text

    implicitWidth: 51
    implicitHeight: 31
    focusPolicy: Qt.StrongFocus
    opacity: enabled ? 1 : 0.5
    Accessible.role: Accessible.CheckBox
    Accessible.name: accessibleName
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onToggleAction: flip()
    Accessible.onPressAction: flip()
    Keys.onReturnPressed: flip()
    Keys.onEnterPressed: flip()

    // As a person's press.
    function flip(): void {
        toggle();
        toggled();
    }

    SpringMotion {
        id: slide
        to: control.pressed ? control.visualPosition : control.position
        duration: 250
        damping: 0.85
        animated: !control.pressed
    }

    indicator: Rectangle {
        width: 51
        height: 31
        radius: 15.5
        antialiasing: true
        color: control.checked ? Theme.systemGreen : Theme.fill
        Behavior on color {
            ColorAnimation { duration: Theme.duration(200) }
        }

        Rectangle {
            readonly property real stretch: control.down ? 5 : 0

            x: 2 + slide.value * (20 - stretch)
            y: 2
            width: 27 + stretch
            height: 27
            radius: 13.5
            antialiasing: true
            color: "white"
            Behavior on width {
                NumberAnimation { duration: Theme.duration(120) }
            }
            BoxShadow {
                z: -1
                radius: 13.5
                offsetY: 3
                blur: 8
                strength: 0.15
            }
        }
        FocusRing {
            shown: control.visualFocus
            radius: 18
        }
    }
}
