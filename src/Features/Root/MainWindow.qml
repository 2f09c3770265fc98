pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Cairnfield.Components
import Cairnfield.Root
import Cairnfield.WatchedFolders
import Cairnfield.Worktrees

// The one window. Where it stands and how large it is are set from outside; so is what it shows.
ApplicationWindow {
    id: window

    required property RootViewModel viewModel
    required property AppearanceViewModel appearance
    required property WorktreesViewModel worktrees
    required property WatchedFoldersViewModel watchedFolders

    title: qsTr("Cairnfield")
    width: Theme.windowWidth
    height: Theme.windowHeight
    minimumWidth: Theme.windowMinimumWidth
    minimumHeight: Theme.windowMinimumHeight
    color: Theme.window

    palette.window: Theme.window
    palette.windowText: Theme.text
    palette.base: Theme.surface
    palette.alternateBase: Theme.window
    palette.text: Theme.text
    palette.button: Theme.surface
    palette.buttonText: Theme.text
    palette.placeholderText: Theme.textSecondary
    palette.highlight: Theme.accent
    palette.highlightedText: Theme.textOnAccent
    palette.toolTipBase: Theme.surfaceRaised
    palette.toolTipText: Theme.text
    palette.link: Theme.accent
    palette.mid: Theme.border
    palette.dark: Theme.textSecondary

    Binding {
        target: Theme
        property: "dark"
        value: window.appearance.isDark
    }
    Binding {
        target: Theme
        property: "highContrast"
        value: window.appearance.prefersHighContrast
    }
    Binding {
        target: Theme
        property: "reducedMotion"
        value: window.appearance.prefersReducedMotion
    }
    Binding {
        target: Theme
        property: "desktopAccent"
        value: window.appearance.accentColor
    }
    Binding {
        target: Theme
        property: "fixedFontFamily"
        value: window.appearance.fixedFontFamily
    }

    RootView {
        id: root

        anchors.fill: parent
        viewModel: window.viewModel
        worktrees: window.worktrees
        watchedFolders: window.watchedFolders
    }

    Instantiator {
        model: 8
        delegate: Shortcut {
            required property int index

            sequence: "Ctrl+" + (index + 1)
            onActivated: window.viewModel.select(index)
        }
    }
    Shortcut {
        sequence: "Ctrl+,"
        onActivated: window.viewModel.selectPreferences()
    }
    Shortcut {
        sequence: "Ctrl+F"
        onActivated: root.focusSearch()
    }
    Shortcut {
        sequences: ["F5", "Ctrl+R"]
        onActivated: root.rescan()
    }
    Shortcut {
        sequence: "Ctrl+W"
        onActivated: window.close()
    }
    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: Qt.quit()
    }
}
