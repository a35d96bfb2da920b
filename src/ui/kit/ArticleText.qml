import QtQuick

// A longer text to read: lines that begin with "# " are headings, those with "• " items of a list,
// and an empty line is a gap.
Column {
    id: root

    property string text: ""
    property real size: 15

    spacing: 3

    Repeater {
        model: root.text.trim().split("\n")
        Item {
            id: line

            required property string modelData
            readonly property bool heading: modelData.startsWith("# ")
            readonly property bool item: modelData.startsWith("• ")

            width: root.width
            height: modelData.length > 0 ? words.implicitHeight : 7

            Label {
                id: bullet
                visible: line.item
                text: "•"
                size: root.size
                color: Theme.systemBlue
                Accessible.ignored: true
            }
            Label {
                id: words
                x: line.item ? bullet.implicitWidth + 8 : 0
                width: parent.width - x
                text: line.heading || line.item ? line.modelData.slice(2) : line.modelData
                size: root.size
                weight: line.heading ? Theme.semibold : Theme.normal
                lineHeight: 1.12
                color: line.heading ? Theme.label : Theme.faded(Theme.label, 0.75)
                wrapMode: Text.Wrap
                Accessible.role: line.heading ? Accessible.Heading : Accessible.StaticText
            }
        }
    }
}
