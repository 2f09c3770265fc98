import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.History

// One attempt: how it ended, of which repository, and when.
Item {
    id: row

    required property historyListItem receipt
    required property bool selected
    required property bool listHasFocus

    signal chosen

    implicitHeight: lines.implicitHeight + 2 * Theme.rowPadding + Theme.spaceTiny
    Accessible.role: Accessible.ListItem
    Accessible.name: receipt.repository
    Accessible.description: receipt.outcome + ", " + receipt.date
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.focusable: true
    Accessible.focused: selected && listHasFocus
    Accessible.onPressAction: row.chosen()

    TapHandler {
        gesturePolicy: TapHandler.ReleaseWithinBounds
        onTapped: row.chosen()
    }
    HoverHandler {
        id: pointer
    }
    RowBackground {
        anchors.fill: parent
        anchors.leftMargin: Theme.spaceSmall
        anchors.rightMargin: Theme.spaceSmall
        selected: row.selected
        hovered: pointer.hovered
        listHasFocus: row.listHasFocus
        hasKeyboard: row.selected && row.listHasFocus
    }
    ColumnLayout {
        id: lines

        anchors.verticalCenter: parent.verticalCenter
        x: Theme.spaceLarge
        width: row.width - 2 * Theme.spaceLarge
        spacing: Theme.spaceHair

        RowLayout {
            spacing: Theme.spaceTiny

            SymbolIcon {
                symbolName: row.receipt.symbolName
                size: 14
                color: Theme.tint(row.receipt.tint)
            }
            Text {
                Layout.fillWidth: true
                text: row.receipt.outcome
                textFormat: Text.PlainText
                font: Theme.captionFont
                color: Theme.tint(row.receipt.tint)
                elide: Text.ElideRight
            }
        }
        Text {
            id: repository

            Layout.fillWidth: true
            text: row.receipt.repository
            textFormat: Text.PlainText
            font: Theme.bodyFont
            color: Theme.text
            elide: Text.ElideRight

            HoverHandler {
                id: repositoryPointer
            }
            Tip {
                text: repository.text
                shown: repositoryPointer.hovered && repository.truncated
            }
        }
        Text {
            Layout.fillWidth: true
            text: row.receipt.date
            textFormat: Text.PlainText
            font: Theme.captionFont
            color: Theme.textSecondary
            elide: Text.ElideRight
        }
    }
}
