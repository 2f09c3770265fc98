import QtQuick
import QtQuick.Layouts
import Cairnfield.Components

// An ignored file or folder: its size, what losing it would mean, and how it comes back.
RowLayout {
    id: row

    required property var entry

    spacing: Theme.spaceSmall
    Accessible.role: Accessible.Grouping
    Accessible.name: [entry.name, entry.size, entry.classification, entry.rebuildHint].filter(text => text !== "").join(", ")

    SymbolIcon {
        Layout.alignment: Qt.AlignTop
        symbolName: row.entry.isDirectory ? "folder" : ""
        color: Theme.textSecondary
    }
    ColumnLayout {
        Layout.fillWidth: true
        spacing: 0

        RowLayout {
            spacing: Theme.spaceLarge

            InfoText {
                Layout.fillWidth: true
                text: row.entry.name
                wrapMode: Text.NoWrap
                elide: Text.ElideMiddle
            }
            InfoText {
                text: row.entry.size
                wrapMode: Text.NoWrap
            }
        }
        RowLayout {
            spacing: Theme.spaceSmall

            InfoText {
                text: row.entry.classification
                font: Theme.captionFont
                color: Theme.textSecondary
                wrapMode: Text.NoWrap
            }
            InfoText {
                Layout.fillWidth: true
                text: row.entry.rebuildHint
                font: Theme.captionFont
                color: Theme.textSecondary
                visible: text !== ""
            }
        }
    }
}
