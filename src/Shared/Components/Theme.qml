pragma Singleton
import QtQuick
import Cairnfield.Components

// Every colour, size and duration of the program. The window binds the first group to what the desktop asks for; all else
// follows. Each text colour is readable on each surface, and on the fill of a badge or a selected row.
QtObject {
    property bool dark: false
    property bool highContrast: false
    property bool reducedMotion: false
    property color desktopAccent: "#2F6FDE"
    property string fixedFontFamily: "monospace"
    property real basePointSize: Application.font.pointSize > 0 ? Application.font.pointSize : 10

    // Surfaces, from the back to the front.
    readonly property color window: dark ? "#1C1C1F" : "#F6F6F8"
    readonly property color sidebar: dark ? "#232327" : "#ECECF0"
    readonly property color surface: dark ? "#2A2A2E" : "#FFFFFF"
    readonly property color surfaceRaised: dark ? "#34343A" : "#FFFFFF"
    readonly property list<color> surfaces: [window, sidebar, surface, surfaceRaised]

    // Lines and texts.
    readonly property color border: highContrast ? text : dark ? "#3C3C43" : "#DEDEE4"
    readonly property color controlBorder: highContrast ? text : dark ? "#54545D" : "#C9C9D1"
    readonly property color text: dark ? "#F2F2F5" : "#1B1B1F"
    readonly property color textSecondary: highContrast ? text : dark ? "#AFAFB9" : "#5F5F68"

    // Colours with a meaning.
    readonly property color accent: Contrast.readable(desktopAccent, surfaces, badgeOpacity)
    readonly property color textOnAccent: Contrast.textOn(accent)
    readonly property color green: dark ? "#4EC47D" : "#1A7440"
    readonly property color blue: dark ? "#85B2F6" : "#215DBD"
    readonly property color orange: dark ? "#F2A33C" : "#A44C08"
    readonly property color red: dark ? "#FF8F88" : "#BF2727"
    readonly property color purple: dark ? "#C4A0F3" : "#7A3FC4"
    readonly property color yellow: dark ? "#E3C341" : "#7C6200"

    // States, laid over whatever is below.
    readonly property color hover: Qt.alpha(text, 0.06)
    readonly property color pressed: Qt.alpha(text, 0.11)
    readonly property color selection: Qt.alpha(accent, badgeOpacity)
    readonly property color selectionInactive: Qt.alpha(text, 0.08)
    readonly property color track: Qt.alpha(text, 0.08)
    readonly property color dimmer: Qt.alpha("#000000", dark ? 0.55 : 0.32)
    readonly property real badgeOpacity: 0.12
    readonly property real disabledOpacity: 0.45

    // Type.
    readonly property font captionFont: Qt.font({ pointSize: Math.max(basePointSize - 1, 7) })
    readonly property font bodyFont: Qt.font({ pointSize: basePointSize })
    readonly property font headlineFont: Qt.font({ pointSize: basePointSize + 1, weight: Font.DemiBold })
    readonly property font titleFont: Qt.font({ pointSize: basePointSize + 6, weight: Font.DemiBold })
    readonly property font heroFont: Qt.font({ pointSize: basePointSize + 20, weight: Font.Light })
    readonly property font fixedFont: Qt.font({ family: fixedFontFamily, pointSize: basePointSize })

    // Space, in multiples of 4, and half a step between lines that belong together.
    readonly property int spaceHair: 2
    readonly property int spaceTiny: 4
    readonly property int spaceSmall: 8
    readonly property int spaceMedium: 12
    readonly property int spaceLarge: 16
    readonly property int pageMargin: 24
    readonly property int cardPadding: 16
    readonly property int cardGap: 16
    readonly property int rowPadding: 8

    // Shape.
    readonly property int hairline: 1
    readonly property int cardRadius: 10
    readonly property int controlRadius: 6
    readonly property int focusRingWidth: 2
    readonly property int barHeight: 4
    readonly property int switchHeight: 22
    readonly property int switchWidth: 40
    readonly property int controlHeight: Math.max(32, Math.ceil(basePointSize * 2.8))
    readonly property int iconSize: 16
    readonly property int iconSizeLarge: 24
    readonly property int iconSizeHero: 40

    // Places.
    readonly property int windowWidth: 1080
    readonly property int windowHeight: 720
    readonly property int windowMinimumWidth: 760
    readonly property int windowMinimumHeight: 520
    readonly property int sidebarWidth: 208
    readonly property int sidebarWidthCollapsed: 56
    readonly property int sidebarCollapsesBelow: 820
    readonly property int panelWidth: 320
    readonly property int headerHeight: controlHeight + 24
    readonly property int listMinimumWidth: 300
    readonly property int sheetWidth: 640
    readonly property int dialogWidth: 420
    readonly property int measure: 420
    readonly property int searchMinimumWidth: 200
    readonly property int numberFieldWidth: 96
    readonly property int formWidth: 680
    readonly property int progressMinimumWidth: 120
    readonly property int scrollBarWidth: 10
    readonly property int tipWidth: 480

    // Motion, in milliseconds.
    readonly property int duration: reducedMotion ? 0 : 150
    readonly property int tipDelay: 600
    readonly property int turnDuration: reducedMotion ? 0 : 3000

    // The colour of a tint by its name, as view models give it.
    function tint(name: string): color {
        const tints = { accent: accent, green: green, blue: blue, orange: orange, red: red, purple: purple,
                        yellow: yellow, primary: text };
        return tints[name] ?? textSecondary;
    }
}
