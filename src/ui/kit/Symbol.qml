import QtQuick

// A symbol by name, `size` points in the square.
Image {
    required property string name
    property real size: 22
    property color color: Theme.label

    width: size
    height: size
    sourceSize.width: Math.round(size)
    sourceSize.height: Math.round(size)
    source: name.length > 0 ? "image://symbol/" + name + "?" + encoded(color) : ""
    smooth: true
    asynchronous: false
    Accessible.ignored: true

    function encoded(value: color): string {
        const hex = part => Math.round(part * 255).toString(16).padStart(2, "0");
        return hex(value.a) + hex(value.r) + hex(value.g) + hex(value.b);
    }
}
