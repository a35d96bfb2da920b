import QtQuick
import QtQuick.Templates as T

// A field to filter a list by, with a glass in front and a cross to empty it.
FocusScope {
    id: root

    property alias text: field.text
    property string placeholder: ""
    property string cancelTitle: ""
    property string clearName: ""
    readonly property bool searching: field.activeFocus || field.text.length > 0

    signal edited(string text)
    signal cancelled()

    implicitHeight: Math.max(36, Theme.scaled(17) + 16)
    opacity: enabled ? 1 : 0.4

    function cancel(): void {
        field.clear();
        field.focus = false;
        cancelled();
    }

    Rectangle {
        anchors.left: parent.left
        anchors.right: cancelButton.visible ? cancelButton.left : parent.right
        height: parent.height
        radius: height / 2
        antialiasing: true
        color: Theme.tertiaryFill

        Symbol {
            id: glass
            x: 10
            anchors.verticalCenter: parent.verticalCenter
            name: "magnifyingglass"
            size: 18
            color: Theme.secondaryLabel
        }

        T.TextField {
            id: field
            anchors.left: glass.right
            anchors.leftMargin: 6
            anchors.right: clearButton.left
            height: parent.height
            focus: true
            verticalAlignment: TextInput.AlignVCenter
            color: Theme.label
            selectionColor: Theme.faded(Theme.systemBlue, 0.35)
            selectedTextColor: Theme.label
            selectByMouse: true
            font.family: Theme.family
            font.pixelSize: Theme.scaled(17)
            inputMethodHints: Qt.ImhNoPredictiveText
            Accessible.role: Accessible.EditableText
            Accessible.name: root.placeholder
            Accessible.searchEdit: true
            onTextEdited: root.edited(text)
            Keys.onEscapePressed: root.cancel()

            Label {
                anchors.fill: parent
                visible: field.text.length === 0 && field.preeditText.length === 0
                text: root.placeholder
                color: Theme.placeholder
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }

        Pressable {
            id: clearButton
            anchors.right: parent.right
            anchors.rightMargin: 4
            width: visible ? 32 : 6
            height: parent.height
            visible: field.text.length > 0
            accessibleName: root.clearName
            onClicked: {
                field.clear();
                root.edited("");
                field.forceActiveFocus();
            }
            contentItem: Item {
                Symbol {
                    anchors.centerIn: parent
                    name: "xmark.circle.fill"
                    size: 18
                    color: Theme.secondaryLabel
                }
            }
        }
    }

    TextButton {
        id: cancelButton
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: root.searching && root.cancelTitle.length > 0
        text: root.cancelTitle
        onClicked: root.cancel()
    }
}
