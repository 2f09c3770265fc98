pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.WatchedFolders

// The folders that the program may look at, with the size and the level of each.
ScreenView {
    id: view

    required property WatchedFoldersViewModel viewModel

    toolbar: RowLayout {
        spacing: Theme.spaceSmall

        ToolbarButton {
            title: qsTr("Add folder")
            symbolName: "plus"
            onClicked: view.viewModel.isImporting = true
        }
        ToolbarButton {
            title: qsTr("Rescan")
            symbolName: "arrow.clockwise"
            onClicked: view.viewModel.rescanAll()
        }
        ToolbarButton {
            title: qsTr("Remove")
            symbolName: "minus"
            enabled: view.viewModel.canRemove
            onClicked: view.viewModel.removeSelected()
        }
    }

    function rescan() {
        viewModel.rescanAll();
    }

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
            title: view.viewModel.emptyTitle
            message: view.viewModel.emptyMessage
            symbolName: view.viewModel.emptySymbolName
            actionTitle: view.viewModel.emptyActionTitle
            action: () => view.viewModel.isImporting = true
        }
        WatchedFolderList {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: view.viewModel.showsList
            viewModel: view.viewModel
        }
    }

    AddFolderSheet {
        viewModel: view.viewModel
        visible: view.viewModel.isImporting
    }
}
