import QtQuick
import QtQuick.Layouts
import Cairnfield.CleanupReview
import Cairnfield.Components
import Cairnfield.History
import Cairnfield.Preferences
import Cairnfield.RecoveryVault
import Cairnfield.Root
import Cairnfield.WatchedFolders
import Cairnfield.Worktrees

// The sidebar, and beside it the chosen section: its title, its toolbar and its screen.
FocusScope {
    id: root

    required property RootViewModel viewModel
    required property WorktreesViewModel worktrees
    required property CleanupReviewViewModel cleanupReview
    required property WatchedFoldersViewModel watchedFolders
    required property RecoveryVaultViewModel recovery
    required property HistoryViewModel history
    required property PreferencesViewModel preferences
    readonly property ScreenView screen: loader.item as ScreenView

    focus: true
    Component.onCompleted: viewModel.appeared()

    function focusSearch() {
        screen?.focusSearch();
    }
    function rescan() {
        screen?.rescan();
    }

    Sidebar {
        id: sidebar

        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: collapsed ? Theme.sidebarWidthCollapsed : Theme.sidebarWidth
        viewModel: root.viewModel
        collapsed: root.width < Theme.sidebarCollapsesBelow
    }
    Rectangle {
        id: divider

        anchors.left: sidebar.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: Theme.hairline
        color: Theme.border
    }
    ColumnLayout {
        anchors.left: divider.right
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.pageMargin
            Layout.rightMargin: Theme.spaceLarge
            Layout.preferredHeight: Theme.headerHeight
            Layout.maximumHeight: Theme.headerHeight
            spacing: Theme.spaceLarge

            InfoText {
                Layout.fillWidth: true
                text: root.viewModel.title
                font: Theme.titleFont
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
                Accessible.role: Accessible.Heading
            }
            Item {
                id: toolbarPlace

                implicitWidth: root.screen?.toolbar?.implicitWidth ?? 0
                implicitHeight: root.screen?.toolbar?.implicitHeight ?? 0
            }
        }
        Rectangle {
            Layout.fillWidth: true
            implicitHeight: Theme.hairline
            color: Theme.border
        }
        Loader {
            id: loader

            Layout.fillWidth: true
            Layout.fillHeight: true
            sourceComponent: switch (root.viewModel.section) {
            case "worktrees":
                return worktreesScreen;
            case "watchedFolders":
                return watchedFoldersScreen;
            case "recovery":
                return recoveryScreen;
            case "history":
                return historyScreen;
            case "preferences":
                return preferencesScreen;
            default:
                return placeholder;
            }
        }
    }
    // Over whichever section is chosen meanwhile: nothing may hide a cleanup that runs.
    CleanupReviewSheet {
        viewModel: root.cleanupReview
    }
    Binding {
        target: root.screen?.toolbar ?? null
        property: "parent"
        value: toolbarPlace
    }
    // Not bound to this file, as other components are: 6.4 cannot load a bound component.
    // qmllint disable unqualified
    Component {
        id: worktreesScreen

        WorktreesView {
            viewModel: root.worktrees
        }
    }
    Component {
        id: watchedFoldersScreen

        WatchedFoldersView {
            viewModel: root.watchedFolders
        }
    }
    Component {
        id: recoveryScreen

        RecoveryVaultView {
            viewModel: root.recovery
        }
    }
    Component {
        id: historyScreen

        HistoryView {
            viewModel: root.history
        }
    }
    Component {
        id: preferencesScreen

        PreferencesView {
            viewModel: root.preferences
        }
    }
    Component {
        id: placeholder

        PlaceholderView {
            title: root.viewModel.title
            symbolName: root.viewModel.symbolName
        }
    }
    // qmllint enable unqualified
}
