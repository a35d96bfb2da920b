import QtQuick
import QtQuick.Templates as T
import Sweepwright.Kit

// A row of a list: icon, title, subtitle, value and accessory; a press, a swipe with actions, a
// selection mark. The first and last of a group round a card in an inset-grouped list.
T.AbstractButton {
    id: row

    // What the row shows. All are optional.
    property string title: ""
    property string subtitle: ""
    property string value: ""
    property string symbol: ""
    property color symbolColor: Theme.systemBlue
    // Whether the symbol stands white on a tile of its colour, or alone in its colour.
    property bool symbolTile: true
    property string picture
    property color subtitleColor: Theme.secondaryLabel
    property int titleWeight: Theme.normal
    property real titleSize: 17
    property real subtitleSize: 13
    property real minimumHeight: 52
    property string accessory: "none" // "none", "disclosure", "switch", "checkmark"
    property bool on: false
    property bool selectable: true
    property bool destructive: false

    // How it lies in its group.
    property bool grouped: false
    property bool first: false
    property bool last: false

    // A multiple selection.
    property bool editing: false
    property bool selected: false

    // Actions behind the trailing edge: [{title, symbol, color}], the first one outermost; in place
    // of a colour a tint, the name of one of the theme.
    property var actions: []
    // Whether an action's press closes the row; if not, its list's closeRow() does when the action
    // has ended.
    property bool closesOnAction: true
    readonly property ListPane list: ListView.view as ListPane

    readonly property bool hasSwitch: accessory === "switch"
    readonly property real inset: grouped ? Theme.margin : 0
    readonly property real openWidth: actions.length * 82
    readonly property bool open: swipe.to < 0
    readonly property bool settled: !swipe.running
    readonly property bool aside: open || swipe.running || drag.active

    // Kept by its list for later use, and not to be seen. A list with transitions does not hide it.
    property bool pooled: false
    visible: !pooled

    signal switched(bool on)
    signal actionTriggered(int index)

    function close(): void {
        swipe.to = 0;
        if (list && list.openRow === row) list.openRow = null;
    }

    function openActions(): void {
        if (actions.length === 0 || editing) return;
        if (list && list.openRow && list.openRow !== row) list.openRow.close();
        swipe.to = -openWidth;
        if (list) list.openRow = row;
    }

    // A press on a row whose actions are open only closes them.
    function press(): void {
        if (open) close();
        else clicked();
    }

    width: ListView.view ? ListView.view.width : implicitWidth
    implicitWidth: 360
    implicitHeight: Math.max(minimumHeight, content.implicitHeight + 20)
    leftPadding: inset
    rightPadding: inset
    focusPolicy: selectable ? Qt.StrongFocus : Qt.NoFocus
    checkable: false
    ListView.onPooled: pooled = true
    ListView.onReused: {
        pooled = false;
        close();
    }
    onActionsChanged: if (actions.length === 0) close()
    onEditingChanged: close()
    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()
    Keys.onSpacePressed: press()
    Keys.onLeftPressed: event => { event.accepted = actions.length > 0; openActions(); }
    Keys.onRightPressed: event => { event.accepted = open; close(); }
    Keys.onMenuPressed: openActions()
    Accessible.role: editing ? Accessible.CheckBox : hasSwitch ? Accessible.CheckBox : Accessible.ListItem
    Accessible.name: title
    Accessible.description: subtitle + (subtitle.length > 0 && value.length > 0 ? ", " : "") + value
    Accessible.checkable: editing || hasSwitch
    Accessible.checked: editing ? selected : on
    Accessible.selected: selected
    Accessible.focusable: true
    Accessible.onPressAction: press()

    SpringMotion {
        id: swipe
        duration: 350
        damping: 0.9
    }
    SpringMotion {
        id: shift
        to: row.editing ? 40 : 0
        duration: 300
        damping: 1
    }

    background: Item {
        Item {
            x: row.inset
            width: row.width - 2 * row.inset
            height: row.height
            clip: row.aside

            RowFace {
                id: face
                x: drag.active ? drag.shown : swipe.value
                width: parent.width
                height: parent.height
                topRadius: row.grouped && row.first && !row.open ? 22 : 0
                bottomRadius: row.grouped && row.last && !row.open ? 22 : 0
                color: row.selected && row.editing ? Qt.tint(face.resting, Theme.faded(Theme.systemBlue, 0.12))
                     : (row.down || (drag.pressed && !drag.active)) && row.selectable && !row.hasSwitch ? Theme.systemGray4 : face.resting
                readonly property color resting: row.grouped ? Theme.secondaryGroupedBackground : Theme.background
                FocusRing {
                    anchors.margins: 2
                    shown: row.visualFocus
                    radius: Math.max(6, face.topRadius, face.bottomRadius)
                }
            }
            Rectangle {
                visible: !row.last
                x: face.x + content.textStart
                width: parent.width - content.textStart
                y: row.height - height
                height: 0.5
                color: Theme.separator
            }
        }
    }

    contentItem: Item {
        id: content

        readonly property real edge: 16
        readonly property real textStart: edge + (row.symbol.length > 0 || row.picture.length > 0 ? icon.width + 12 : 0) + shift.value
        implicitHeight: texts.implicitHeight
        // What goes aside keeps within the card.
        clip: row.aside

        Item {
            x: drag.active ? drag.shown : swipe.value
            width: content.width
            height: row.height

            Symbol {
                x: content.edge - 40 + shift.value
                anchors.verticalCenter: parent.verticalCenter
                visible: shift.value > 1
                opacity: shift.value / 40
                name: row.selected ? "checkmark.circle.fill" : "circle"
                size: 24
                color: row.selected ? Theme.systemBlue : Theme.systemGray3
            }

            Item {
                id: icon
                x: content.edge + shift.value
                anchors.verticalCenter: parent.verticalCenter
                width: row.picture.length > 0 ? 50 : 30
                height: width

                Rectangle {
                    anchors.fill: parent
                    visible: row.symbol.length > 0
                    radius: 8
                    antialiasing: true
                    color: row.symbolTile ? row.symbolColor : "transparent"
                    Symbol {
                        anchors.centerIn: parent
                        name: row.symbol
                        size: row.symbolTile ? 20 : 30
                        color: row.symbolTile ? "white" : row.symbolColor
                    }
                }
                Image {
                    anchors.fill: parent
                    visible: row.picture.length > 0
                    source: row.picture
                    sourceSize.width: 50
                    sourceSize.height: 50
                    fillMode: Image.PreserveAspectCrop
                    asynchronous: true
                    Accessible.ignored: true
                }
            }

            Column {
                id: texts
                x: content.textStart
                anchors.verticalCenter: parent.verticalCenter
                width: trailing.x - x - 8
                spacing: 2
                Label {
                    width: parent.width
                    text: row.title
                    size: row.titleSize
                    weight: row.titleWeight
                    color: row.destructive ? Theme.systemRed : Theme.label
                    // Names of right-to-left scripts, too, stand beside the icon.
                    horizontalAlignment: Text.AlignLeft
                    wrapMode: Text.Wrap
                    maximumLineCount: 2
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }
                Label {
                    width: parent.width
                    visible: row.subtitle.length > 0
                    text: row.subtitle
                    size: row.subtitleSize
                    color: row.subtitleColor
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
            }

            Row {
                id: trailing
                x: parent.width - width - content.edge
                anchors.verticalCenter: parent.verticalCenter
                spacing: 6
                Label {
                    visible: row.value.length > 0
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.value
                    size: 14
                    color: Theme.secondaryLabel
                    Accessible.ignored: true
                }
                Symbol {
                    visible: row.accessory === "disclosure" && !row.editing
                    anchors.verticalCenter: parent.verticalCenter
                    name: "chevron.right"
                    size: 14
                    color: Theme.tertiaryLabel
                }
                Symbol {
                    visible: row.accessory === "checkmark"
                    anchors.verticalCenter: parent.verticalCenter
                    name: "checkmark"
                    size: 18
                    color: Theme.systemBlue
                }
                Loader {
                    active: row.hasSwitch
                    visible: active
                    anchors.verticalCenter: parent.verticalCenter
                    sourceComponent: Switch {
                        accessibleName: row.title
                        checked: row.on
                        focusPolicy: Qt.NoFocus
                        Accessible.ignored: true
                        // It shows what the row says, also when that did not follow.
                        onToggled: {
                            row.switched(checked);
                            checked = Qt.binding(() => row.on);
                        }
                    }
                }
            }
        }
    }

    // A finger that goes sideways moves the row; one that goes up or down stays with the list.
    MouseArea {
        id: drag

        property bool active: false
        property bool moved: false
        property real start: 0
        property point pressedAt
        property real wanted: 0
        // Beyond the actions' width the row follows more and more reluctantly.
        readonly property real shown: wanted > 0 ? 0
            : wanted > -row.openWidth ? wanted : -row.openWidth + (wanted + row.openWidth) * 0.35

        anchors.fill: parent
        enabled: row.actions.length > 0 && !row.editing
        visible: enabled
        preventStealing: active
        onPressed: mouse => {
            pressedAt = Qt.point(mouse.x, mouse.y);
            start = swipe.value;
            moved = false;
        }
        onPositionChanged: mouse => {
            const dx = mouse.x - pressedAt.x;
            const dy = mouse.y - pressedAt.y;
            if (!active && Math.abs(dx) > 12 && Math.abs(dx) > Math.abs(dy)) {
                active = true;
                moved = true;
                if (row.list && row.list.openRow && row.list.openRow !== row) row.list.openRow.close();
            }
            if (active) wanted = start + dx;
        }
        onReleased: settle()
        onCanceled: settle()
        onClicked: {
            if (moved) return;
            row.forceActiveFocus(Qt.MouseFocusReason);
            row.press();
        }

        function settle(): void {
            if (!active) return;
            swipe.jump(shown);
            active = false;
            if (swipe.value < -row.openWidth / 2) row.openActions();
            else row.close();
        }
    }

    // Not in the background: what lies below the row's own face is never pressed.
    Item {
        x: row.inset
        width: row.width - 2 * row.inset
        height: row.height
        clip: true
        visible: row.open || swipe.value < 0 || drag.active

        Row {
            id: tray
            height: parent.height
            x: parent.width + (drag.active ? drag.shown : swipe.value)
            layoutDirection: Qt.RightToLeft
            Repeater {
                model: tray.parent.visible ? row.actions : []
                Pressable {
                    id: action
                    required property var modelData
                    required property int index
                    readonly property color color: modelData.color ?? Theme[modelData.tint]
                    width: Math.max(82, index === 0 && drag.active ? -drag.shown - row.openWidth + 82 : 82)
                    height: tray.height
                    text: modelData.title
                    ringRadius: 4
                    onClicked: {
                        // The actions may be others afterwards, and this button gone.
                        const own = row;
                        own.actionTriggered(index);
                        if (own.closesOnAction) own.close();
                    }
                    background: Rectangle {
                        color: action.down ? Qt.darker(action.color, 1.15) : action.color
                    }
                    contentItem: Item {
                        Column {
                            anchors.centerIn: parent
                            width: 74
                            spacing: 3
                            Symbol {
                                anchors.horizontalCenter: parent.horizontalCenter
                                visible: name.length > 0
                                name: action.modelData.symbol ?? ""
                                size: 22
                                color: "white"
                            }
                            Label {
                                width: parent.width
                                text: action.text
                                size: 12
                                weight: Theme.medium
                                color: "white"
                                wrapMode: Text.Wrap
                                maximumLineCount: 2
                                elide: Text.ElideRight
                                horizontalAlignment: Text.AlignHCenter
                                Accessible.ignored: true
                            }
                        }
                    }
                }
            }
        }
    }

    onClicked: if (hasSwitch) switched(!on)
}
