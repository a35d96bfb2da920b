import QtQuick
import Sweepwright.Kit

// The line of figures: in one row where there is room, else each on a line of its own.
Label {
    id: root

    required property string info
    readonly property bool roomy: oneRow.advanceWidth <= width

    objectName: "storageInfo"
    text: roomy ? info : info.split(" | ").join("\n")
    size: 14
    lineHeight: 1.15
    color: Theme.secondaryLabel
    horizontalAlignment: Text.AlignHCenter
    elide: Text.ElideRight
    Accessible.name: info

    TextMetrics {
        id: oneRow
        font: root.font
        text: root.info
    }
}
