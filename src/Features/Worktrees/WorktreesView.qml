pragma ComponentBehavior: Bound
import QtQuick
import Cairnfield.Components
import Cairnfield.Worktrees

// Every worktree that the program knows, with the detail of the chosen one beside the list.
ScreenView {
    id: view

    required property WorktreesViewModel viewModel

    toolbar: WorktreesToolbar {
        viewModel: view.viewModel
        compact: view.width < 820
    }

    function focusSearch() {
        if (viewModel.showsList)
            list.focusSearch();
    }
    function rescan() {
        if (viewModel.canScan)
            viewModel.scan();
    }

    onVisibleChanged: if (visible) viewModel.refreshDates()
    Component.onCompleted: viewModel.refreshDates()

    EmptyStateView {
        anchors.fill: parent
        visible: !view.viewModel.showsList
        title: view.viewModel.emptyTitle
        message: view.viewModel.emptyMessage
        symbolName: view.viewModel.emptySymbolName
        actionTitle: view.viewModel.emptyActionTitle
        action: () => view.viewModel.scan()
    }

    ListDetailSplit {
        anchors.fill: parent
        visible: view.viewModel.showsList
        list: WorktreeListPane {
            id: list

            anchors.fill: parent
            viewModel: view.viewModel
        }

        WorktreeDetailView {
            anchors.fill: parent
            visible: worktree.isPresent
            worktree: view.viewModel.detail
            onPreserveAndClean: view.viewModel.preserveAndClean()
            onReveal: view.viewModel.reveal()
            onOpenTerminal: view.viewModel.openTerminal()
            onTogglePin: view.viewModel.togglePin()
        }
        EmptyStateView {
            anchors.fill: parent
            visible: !view.viewModel.detail.isPresent
            title: qsTr("Select a worktree")
            message: qsTr("Cairnfield shows its Git state, what would be preserved, and what would be removed.")
            symbolName: "sidebar.right"
        }
    }

    Connections {
        target: view.viewModel

        function onReviewEnded() {
            if (view.viewModel.showsList)
                list.takeKeyboard();
        }
    }
}
