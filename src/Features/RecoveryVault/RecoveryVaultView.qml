pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.RecoveryVault

// The local files that were kept when their worktree went.
ScreenView {
    id: view

    required property RecoveryVaultViewModel viewModel

    onVisibleChanged: if (visible) viewModel.refreshDates()
    Component.onCompleted: viewModel.refreshDates()

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        SymbolLabel {
            Layout.fillWidth: true
            Layout.topMargin: Theme.spaceLarge
            Layout.leftMargin: Theme.pageMargin
            Layout.rightMargin: Theme.pageMargin
            text: view.viewModel.notice
            symbolName: "exclamationmark.triangle"
            tint: Theme.orange
            visible: text !== ""
        }
        FileNotice {
            Layout.topMargin: Theme.spaceLarge
            Layout.leftMargin: Theme.pageMargin
            Layout.rightMargin: Theme.pageMargin
            text: view.viewModel.fileNotice
        }
        EmptyStateView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: !view.viewModel.showsList
            title: qsTr("The Recovery Vault is empty")
            message: qsTr("Local-only files that must not be pushed are copied here before a worktree is removed.")
            symbolName: "archivebox"
        }
        RecoveryVaultList {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: view.viewModel.showsList
            viewModel: view.viewModel
        }
    }

    ConfirmDialog {
        title: qsTr("Delete this file permanently?")
        message: view.viewModel.deletionQuestion
        confirmTitle: qsTr("Delete")
        destructive: true
        visible: view.viewModel.isDeleting
        onConfirmed: view.viewModel.confirmDeletion()
        onClosed: view.viewModel.cancelDeletion()
    }
}
