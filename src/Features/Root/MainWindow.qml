pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Cairnfield.Appearance
import Cairnfield.Components
import Cairnfield.Preferences
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
    required property PreferencesViewModel preferences

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

    ThemeAppearance {
        appearance: window.appearance
    }

    RootView {
        id: root

        anchors.fill: parent
        viewModel: window.viewModel
        worktrees: window.worktrees
        watchedFolders: window.watchedFolders
        preferences: window.preferences
    }

    QuitNotice {
        isShown: window.viewModel.quitsAfterCleanup
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
