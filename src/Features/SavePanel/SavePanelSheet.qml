import QtQuick
import QtQuick.Dialogs
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.SavePanel

// Where a file is to be saved: its name, and its folder, typed or picked in the desktop's own chooser.
Sheet {
    id: sheet

    required property SheetSavePanel panel

    title: qsTr("Save a copy")
    visible: panel.isOpen
    onOpened: {
        name.text = panel.name;
        folder.text = panel.folder;
        name.forceActiveFocus(Qt.TabFocusReason);
        name.selectAll();
    }
    onClosed: panel.cancel()
    onAccepted: panel.save(name.text, folder.text)

    GridLayout {
        Layout.fillWidth: true
        columns: 3
        columnSpacing: Theme.spaceSmall
        rowSpacing: Theme.spaceSmall

        InfoText {
            text: qsTr("Name")
            color: Theme.textSecondary
            Accessible.ignored: true
        }
        TextEntry {
            id: name

            Layout.fillWidth: true
            Layout.columnSpan: 2
            title: qsTr("Name")
        }
        InfoText {
            text: qsTr("Folder")
            color: Theme.textSecondary
            Accessible.ignored: true
        }
        TextEntry {
            id: folder

            Layout.fillWidth: true
            title: qsTr("Folder")
        }
        PlainButton {
            text: qsTr("Choose…")
            symbolName: "folder"
            onClicked: chooser.open()
        }
    }
    InfoText {
        Layout.fillWidth: true
        text: qsTr("A folder that does not exist yet is made.")
        font: Theme.captionFont
        color: Theme.textSecondary
        visible: sheet.panel.problem === ""
    }
    SymbolLabel {
        Layout.fillWidth: true
        text: sheet.panel.problem
        symbolName: "exclamationmark.triangle"
        tint: Theme.orange
        visible: text !== ""
    }

    footer: [
        PlainButton {
            text: qsTr("Cancel")
            onClicked: sheet.close()
        },
        PrimaryButton {
            text: qsTr("Save")
            enabled: name.text !== ""
            onClicked: sheet.panel.save(name.text, folder.text)
        }
    ]

    Connections {
        target: sheet.panel

        function onFolderChanged() {
            folder.text = sheet.panel.folder;
        }
    }
    FolderDialog {
        id: chooser

        title: qsTr("Choose a folder")
        currentFolder: sheet.panel.folderAddress
        onAccepted: sheet.panel.pickFolder(selectedFolder)
    }
}
