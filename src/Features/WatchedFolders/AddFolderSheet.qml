import QtQuick
import QtQuick.Dialogs
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.WatchedFolders

// Where a folder is named: typed, or picked in the desktop's own chooser.
Sheet {
    id: sheet

    required property WatchedFoldersViewModel viewModel

    title: qsTr("Add folder")
    onOpened: {
        path.clear();
        path.forceActiveFocus(Qt.TabFocusReason);
    }
    onClosed: viewModel.isImporting = false
    onAccepted: viewModel.addTyped(path.text)

    InfoText {
        Layout.fillWidth: true
        text: qsTr("Cairnfield looks for repositories in this folder and in the folders below it.")
        color: Theme.textSecondary
    }
    RowLayout {
        Layout.topMargin: Theme.spaceSmall
        spacing: Theme.spaceSmall

        TextEntry {
            id: path

            Layout.fillWidth: true
            title: qsTr("Path of the folder")
            prompt: title
        }
        PlainButton {
            text: qsTr("Choose…")
            symbolName: "folder"
            onClicked: chooser.open()
        }
    }
    SymbolLabel {
        Layout.fillWidth: true
        text: sheet.viewModel.importError
        symbolName: "exclamationmark.triangle"
        tint: Theme.orange
        opacity: text === "" ? 0 : 1
    }

    footer: [
        PlainButton {
            text: qsTr("Cancel")
            onClicked: sheet.close()
        },
        PrimaryButton {
            text: qsTr("Add")
            enabled: path.text !== ""
            onClicked: sheet.viewModel.addTyped(path.text)
        }
    ]

    FolderDialog {
        id: chooser

        title: qsTr("Add folder")
        currentFolder: sheet.viewModel.firstFolder
        onAccepted: sheet.viewModel.addChosen(selectedFolder)
    }
}
