import QtQuick
import Sweepwright.Kit

// Rows of apps, and what stands in their place while there are none.
ListPane {
    id: root

    property bool loading: false
    property string loadingName: ""
    property string emptyText: ""
    property string emptySymbol: ""
    property bool grouped: false
    property bool editing: false
    // Whether rows are seen to come, go and move.
    property bool animated: true

    // What a person does to a row.
    signal rowSelected(int row)
    signal actionTriggered(int row, int action)

    readonly property int motion: Theme.duration(300)

    delegate: TableRow {
        id: row

        required title
        required picture
        required property int index
        required property string key
        required property string detail
        required property bool isProtected
        required property bool isSelected
        required property var swipeActions

        objectName: "app " + key
        minimumHeight: 70
        titleSize: 16
        titleWeight: Theme.medium
        // A line breaks between the figures, never inside one.
        subtitle: detail.split(" | ").map(part => part.replace(/ /g, "\u00a0")).join("\u00a0| ")
        subtitleColor: isProtected ? Theme.systemGreen : Theme.secondaryLabel
        grouped: root.grouped
        first: index === 0
        last: index === root.count - 1
        editing: root.editing
        selected: isSelected
        actions: swipeActions
        closesOnAction: false
        onClicked: root.rowSelected(index)
        onActionTriggered: action => root.actionTriggered(index, action)
    }

    // None at all where nothing is to be seen moving: a list that keeps them, disabled, leaves rows
    // behind that are gone.
    readonly property bool moves: animated && motion > 0
    add: moves ? coming : null
    remove: moves ? going : null
    move: moves ? moving : null
    displaced: moves ? makingWay : null

    Transition {
        id: coming
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: root.motion }
    }
    Transition {
        id: going
        NumberAnimation { property: "opacity"; to: 0; duration: root.motion }
    }
    Transition {
        id: moving
        NumberAnimation { property: "y"; duration: root.motion; easing.type: Easing.InOutCubic }
    }
    Transition {
        id: makingWay
        NumberAnimation { property: "y"; duration: root.motion; easing.type: Easing.InOutCubic }
        // One that was still coming is there all the same.
        NumberAnimation { property: "opacity"; to: 1; duration: root.motion }
    }

    Item {
        id: middle
        parent: root.parent
        anchors.fill: parent
        anchors.topMargin: root.topInset
        anchors.bottomMargin: root.bottomInset

        Column {
            anchors.centerIn: parent
            width: Math.min(parent.width - 80, 420)
            spacing: 14
            visible: root.emptyText.length > 0 && !root.loading
            Symbol {
                anchors.horizontalCenter: parent.horizontalCenter
                visible: name.length > 0
                name: root.emptySymbol
                size: 52
                color: Theme.tertiaryLabel
            }
            Label {
                objectName: "emptyLabel"
                width: parent.width
                text: root.emptyText
                size: 16
                color: Theme.secondaryLabel
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignHCenter
            }
        }

        Item {
            id: busy
            anchors.centerIn: parent
            width: 80
            height: 80
            opacity: 0
            visible: opacity > 0
            states: State {
                name: "shown"
                when: root.loading
                PropertyChanges { busy.opacity: 1 }
            }
            transitions: Transition {
                to: "shown"
                SequentialAnimation {
                    // Over rows only when it lasts: most looks are over before that.
                    PauseAnimation { duration: root.count > 0 ? 500 : 0 }
                    NumberAnimation { property: "opacity"; duration: Theme.duration(200) }
                }
            }

            Rectangle {
                anchors.fill: parent
                visible: root.count > 0
                radius: 20
                antialiasing: true
                color: Theme.faded(Theme.elevatedBackground, 0.94)
                border.width: 0.5
                border.color: Theme.separator
            }
            ActivityIndicator {
                objectName: "loadingIndicator"
                anchors.centerIn: parent
                large: true
                running: root.loading
                accessibleName: root.loadingName
            }
        }
    }
}
