import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.WatchedFolders

// One folder on a card: what it is called and how large it is, how that stands, and what takes most of it.
Item {
    id: row

    required property watchedFolderListItem folder
    required property bool selected
    required property bool listHasFocus

    signal chosen
    signal reveal
    signal rescan

    implicitHeight: column.implicitHeight + 2 * Theme.cardPadding
    Accessible.role: Accessible.ListItem
    Accessible.name: folder.name
    Accessible.description: folder.description
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.focusable: true
    Accessible.focused: selected && listHasFocus
    Accessible.onPressAction: row.chosen()

    SelectableCard {
        anchors.fill: parent
        selected: row.selected
        listHasFocus: row.listHasFocus
        onTapped: row.chosen()
    }
    ColumnLayout {
        id: column

        x: Theme.cardPadding
        y: Theme.cardPadding
        width: row.width - 2 * Theme.cardPadding
        spacing: Theme.spaceSmall

        RowLayout {
            spacing: Theme.spaceLarge

            ColumnLayout {
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignTop
                spacing: Theme.spaceHair

                InfoText {
                    Layout.fillWidth: true
                    text: row.folder.name
                    font: Theme.headlineFont
                    wrapMode: Text.NoWrap
                    elide: Text.ElideRight
                }
                ElidedPath {
                    Layout.fillWidth: true
                    path: row.folder.path
                }
            }
            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                spacing: Theme.spaceHair

                InfoText {
                    Layout.alignment: Qt.AlignRight
                    text: row.folder.size
                    font: Theme.headlineFont
                    color: row.folder.isSizeKnown ? Theme.text : Theme.textSecondary
                    wrapMode: Text.NoWrap
                }
                // Holds its place while there is no change to tell, so that the row does not grow when one arrives.
                InfoText {
                    Layout.alignment: Qt.AlignRight
                    text: row.folder.change
                    font: Theme.captionFont
                    color: Theme.textSecondary
                    wrapMode: Text.NoWrap
                    Accessible.ignored: text === ""
                }
            }
        }
        RowLayout {
            spacing: Theme.spaceSmall

            StatusBadge {
                title: row.folder.level
                symbolName: row.folder.symbolName
                tint: Theme.tint(row.folder.tint)
            }
            InfoText {
                text: row.folder.scanned
                font: Theme.captionFont
                color: Theme.textSecondary
                wrapMode: Text.NoWrap
            }
            InfoText {
                text: qsTr("Scanning…")
                font: Theme.captionFont
                color: Theme.accent
                wrapMode: Text.NoWrap
                visible: row.folder.isScanning
            }
            SymbolLabel {
                Layout.fillWidth: true
                text: row.folder.error
                symbolName: "exclamationmark.triangle"
                font: Theme.captionFont
                tint: Theme.orange
                visible: text !== ""
            }
            Item {
                Layout.fillWidth: true
                visible: row.folder.error === ""
            }
            LinkButton {
                text: qsTr("Reveal")
                Accessible.description: row.folder.name
                onClicked: row.reveal()
            }
            LinkButton {
                text: qsTr("Rescan")
                Accessible.description: row.folder.name
                onClicked: row.rescan()
            }
        }
        LargestItems {
            Layout.fillWidth: true
            items: row.folder.largest
            visible: items.length > 0
        }
    }
}
