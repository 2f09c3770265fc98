import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.RecoveryVault

// One kept file: what it is, where it came from, and what can be done with it.
Item {
    id: row

    required property vaultListItem file
    required property bool selected
    required property bool listHasFocus

    signal chosen
    signal reveal
    signal restore
    signal deletePermanently

    implicitHeight: lines.implicitHeight + 2 * Theme.cardPadding
    Accessible.role: Accessible.ListItem
    Accessible.name: file.path
    Accessible.description: file.description
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
        id: lines

        x: Theme.cardPadding
        y: Theme.cardPadding
        width: row.width - 2 * Theme.cardPadding
        spacing: Theme.spaceTiny

        RowLayout {
            spacing: Theme.spaceLarge

            ElidedPath {
                Layout.fillWidth: true
                path: row.file.path
                font: Theme.headlineFont
                color: Theme.text
            }
            InfoText {
                text: row.file.size
                wrapMode: Text.NoWrap
            }
        }
        InfoText {
            id: origin

            Layout.fillWidth: true
            text: row.file.origin
            font: Theme.captionFont
            color: Theme.textSecondary
            wrapMode: Text.NoWrap
            elide: Text.ElideMiddle

            HoverHandler {
                id: pointer
            }
            Tip {
                text: origin.text
                shown: pointer.hovered && origin.truncated
            }
        }
        RowLayout {
            Layout.topMargin: Theme.spaceTiny
            spacing: Theme.spaceLarge

            LinkButton {
                text: qsTr("Reveal")
                Accessible.description: row.file.path
                onClicked: row.reveal()
            }
            LinkButton {
                text: qsTr("Restore…")
                Accessible.description: row.file.path
                onClicked: row.restore()
            }
            LinkButton {
                text: qsTr("Delete permanently")
                ink: Theme.red
                Accessible.description: row.file.path
                onClicked: row.deletePermanently()
            }
            InfoText {
                Layout.fillWidth: true
                text: row.file.expiry
                font: Theme.captionFont
                color: Theme.textSecondary
                horizontalAlignment: Text.AlignRight
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
                visible: text !== ""
            }
            Item {
                Layout.fillWidth: true
                visible: row.file.expiry === ""
            }
        }
    }
}
