import QtQuick
import Sweepwright.Kit

// A line of a card's list.
Pressable {
    id: row

    required property int index
    required text

    objectName: "fileRow" + index
    leftPadding: 8
    rightPadding: 8
    ringRadius: 6

    background: Item {
        Rectangle {
            anchors.fill: parent
            radius: 8
            color: Theme.fill
            visible: row.down
        }
        Rectangle {
            x: 8
            width: parent.width - 16
            height: 0.5
            color: Theme.separator
            visible: row.index > 0 && !row.down
        }
    }
    contentItem: Label {
        text: row.text
        size: 11
        color: Theme.secondaryLabel
        horizontalAlignment: Text.AlignLeft
        // The size at the end stays in sight.
        elide: Text.ElideMiddle
        maximumLineCount: 1
        Accessible.ignored: true
    }
}
