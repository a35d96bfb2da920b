import QtQuick

// The line over a group of rows, or the remark under it.
Label {
    property bool footer: false

    x: 2 * Theme.margin
    width: (parent ? parent.width : 0) - 4 * Theme.margin
    topPadding: footer ? 6 : 22
    bottomPadding: footer ? 16 : 7
    size: 13
    weight: footer ? Theme.normal : Theme.semibold
    color: Theme.secondaryLabel
    wrapMode: Text.Wrap
    Accessible.role: footer ? Accessible.StaticText : Accessible.Heading
}
