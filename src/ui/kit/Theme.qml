pragma Singleton

import QtQuick
import Sweepwright.Kit

// Colours by meaning, in light and dark; the type scale; what motion lasts.
QtObject {
    readonly property bool dark: Appearance.dark

    readonly property color systemBlue: dark ? "#0a84ff" : "#007aff"
    readonly property color systemGreen: dark ? "#30d158" : "#34c759"
    readonly property color systemOrange: dark ? "#ff9f0a" : "#ff9500"
    readonly property color systemRed: dark ? "#ff453a" : "#ff3b30"
    readonly property color systemTeal: dark ? "#40c8e0" : "#30b0c7"
    readonly property color systemIndigo: dark ? "#5e5ce6" : "#5856d6"
    readonly property color systemPurple: dark ? "#bf5af2" : "#af52de"
    readonly property color systemPink: dark ? "#ff375f" : "#ff2d55"
    readonly property color systemYellow: dark ? "#ffd60a" : "#ffcc00"
    readonly property color systemGray: "#8e8e93"
    readonly property color systemGray2: dark ? "#636366" : "#aeaeb2"
    readonly property color systemGray3: dark ? "#48484a" : "#c7c7cc"
    readonly property color systemGray4: dark ? "#3a3a3c" : "#d1d1d6"
    readonly property color systemGray5: dark ? "#2c2c2e" : "#e5e5ea"
    readonly property color systemGray6: dark ? "#1c1c1e" : "#f2f2f7"

    readonly property color label: dark ? "#ffffff" : "#000000"
    readonly property color secondaryLabel: dark ? "#99ebebf5" : "#993c3c43"
    readonly property color tertiaryLabel: dark ? "#72ebebf5" : "#7f3c3c43"
    readonly property color placeholder: tertiaryLabel
    readonly property color separator: dark ? "#99545458" : "#4a3c3c43"
    readonly property color fill: dark ? "#5c787880" : "#33787880"
    readonly property color secondaryFill: dark ? "#52787880" : "#29787880"
    readonly property color tertiaryFill: dark ? "#3d767680" : "#1f767680"
    readonly property color quaternaryFill: dark ? "#2e747480" : "#14747480"

    readonly property color background: dark ? "#000000" : "#ffffff"
    readonly property color secondaryBackground: dark ? "#1c1c1e" : "#f2f2f7"
    readonly property color tertiaryBackground: dark ? "#2c2c2e" : "#ffffff"
    readonly property color groupedBackground: dark ? "#000000" : "#f2f2f7"
    readonly property color secondaryGroupedBackground: dark ? "#1c1c1e" : "#ffffff"
    // What lies over everything else: alerts, sheets, popovers.
    readonly property color elevatedBackground: dark ? "#252528" : "#fbfbfd"
    readonly property color veil: dark ? "#80000000" : "#4d000000"

    readonly property string family: families.find(name => installed.includes(name)) ?? ""  // qmllint disable type
    readonly property string displayFamily:
        installed.includes("Inter Display") ? "Inter Display" : family
    readonly property int normal: Font.Normal
    readonly property int medium: Font.Medium
    readonly property int semibold: Font.DemiBold
    readonly property int bold: Font.Bold

    readonly property real margin: 16
    // What a finger can hit.
    readonly property real touch: 44

    readonly property list<string> families: ["Inter", "SF Pro Text", "Cantarell", "Noto Sans"]
    readonly property var installed: Qt.fontFamilies()

    // Pixels for a font of `points`. Titles, large already, grow half as much as texts do.
    function scaled(points: real): real {
        const growth = Appearance.textScale - 1;
        return Math.round(points * (1 + (points >= 28 ? growth / 2 : growth)));
    }

    // A size for texts of bars, which have no room to grow with the others beyond a quarter.
    function inBar(points: real): real {
        return points * Math.min(1, 1.25 / Appearance.textScale);
    }

    // How long a motion lasts that is no spring.
    function duration(milliseconds: int): int {
        return Appearance.reducedMotion ? 0 : milliseconds;
    }

    function faded(color: color, alpha: real): color {
        return Qt.rgba(color.r, color.g, color.b, color.a * alpha);
    }
}
