pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Cairnfield.Appearance
import Cairnfield.CleanupReview
import Cairnfield.Components
import Cairnfield.History
import Cairnfield.Preferences
import Cairnfield.RecoveryVault
import Cairnfield.Root
import Cairnfield.SavePanel
import Cairnfield.WatchedFolders
import Cairnfield.Worktrees

// The one window. Where it stands and how large it is are set from outside; so is what it shows.
ApplicationWindow {
    id: window

    required property RootViewModel viewModel
    required property AppearanceViewModel appearance
    required property WorktreesViewModel worktrees
    required property CleanupReviewViewModel cleanupReview
    required property WatchedFoldersViewModel watchedFolders
    required property RecoveryVaultViewModel recovery
    required property HistoryViewModel history
    required property PreferencesViewModel preferences
    required property SheetSavePanel savePanel

    // The window's own and not its content's: a sheet over the content must not keep anybody from leaving.
    readonly property list<QtObject> ways: [
        Shortcut {
            sequence: "Ctrl+W"
            onActivated: window.close()
        },
        Shortcut {
            sequence: "Ctrl+Q"
            onActivated: Qt.quit()
        }
    ]

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
        cleanupReview: window.cleanupReview
        watchedFolders: window.watchedFolders
        recovery: window.recovery
        history: window.history
        preferences: window.preferences
    }

    QuitNotice {
        isShown: window.viewModel.quitsAfterCleanup
    }

    SavePanelSheet {
        panel: window.savePanel
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
}
