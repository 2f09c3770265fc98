import QtQuick
import Cairnfield.Appearance
import Cairnfield.Components
import Cairnfield.MenuBar

// The window that the item in the desktop's panel opens. Where it stands is set from outside.
Window {
    id: panel

    required property MenuBarViewModel viewModel
    required property AppearanceViewModel appearance
    // Whether what lies behind the corners can be seen: otherwise they are square, not black.
    required property bool hasRoundCorners

    title: qsTr("Cairnfield storage status")
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    width: Theme.panelWidth
    height: content.implicitHeight
    color: hasRoundCorners ? "transparent" : Theme.surfaceRaised

    ThemeAppearance {
        appearance: panel.appearance
    }
    Rectangle {
        anchors.fill: parent
        radius: panel.hasRoundCorners ? Theme.cardRadius : 0
        color: Theme.surfaceRaised
        border.color: Theme.controlBorder
        border.width: Theme.hairline
    }
    MenuBarContentView {
        id: content

        anchors.fill: parent
        viewModel: panel.viewModel
    }
    Shortcut {
        sequences: ["Escape", "Ctrl+W"]
        onActivated: panel.close()
    }
    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: Qt.quit()
    }
}
