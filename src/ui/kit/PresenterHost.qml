import QtQuick
import Sweepwright.Kit
import Sweepwright.Presentation

// Draws what a Presenter holds, over everything else. What lies under it should be disabled while
// the presenter is active.
Item {
    id: host

    required property Presenter presenter
    required property bool pad
    property real safeTop: 0
    property real safeBottom: 0

    Component.onCompleted: presenter.drawn = true

    Repeater {
        id: presentations
        model: host.presenter
        delegate: FocusScope {
            id: entry

            required property QtObject presentation
            required property AlertController alert
            required property ScreenController screen
            required property bool leaving
            required property int index
            readonly property bool onTop: index === presentations.count - 1

            width: host.width
            height: host.height
            enabled: !leaving && onTop
            focus: !leaving && onTop

            SpringMotion {
                id: shown
                duration: entry.leaving ? 220 : 350
                damping: 1
                onSettled: if (entry.leaving) host.presenter.removeLeft(entry.presentation)
            }
            Component.onCompleted: {
                shown.jump(0);
                shown.to = 1;
                forceActiveFocus();
                if (alert) {
                    const kind = alert.style === AlertController.Alert ? "AlertCard.qml"
                               : host.pad ? "SheetPopover.qml" : "SheetCard.qml";
                    card.setSource(kind, {
                        alert: alert,
                        shown: Qt.binding(() => shown.value),
                        safeTop: Qt.binding(() => host.safeTop),
                        safeBottom: Qt.binding(() => host.safeBottom)
                    });
                } else {
                    card.setSource(screen.view, {screen: screen, shown: Qt.binding(() => shown.value)});
                }
            }
            onLeavingChanged: if (leaving) shown.to = 0

            Keys.onEscapePressed: if (alert) alert.cancel()
            Keys.onBackPressed: if (alert) alert.cancel()

            Rectangle {
                anchors.fill: parent
                visible: entry.alert !== null
                color: entry.alert && entry.alert.style === AlertController.ActionSheet && host.pad
                    ? "#14000000" : Theme.veil
                opacity: shown.value
            }
            // Nothing goes through to what lies under it; beside a sheet a tap cancels.
            MouseArea {
                anchors.fill: parent
                hoverEnabled: true
                onWheel: wheel => wheel.accepted = true
                onClicked: {
                    if (entry.alert && entry.alert.style === AlertController.ActionSheet) entry.alert.cancel();
                }
            }
            Loader {
                id: card
                anchors.fill: parent
                focus: true
            }
        }
    }
}
