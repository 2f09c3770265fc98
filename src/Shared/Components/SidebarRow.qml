import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

// One section in the sidebar. Collapsed it shows its symbol alone and its title as the tooltip.
T.ItemDelegate {
    id: row

    required property string title
    required property string symbolName
    property bool collapsed: false
    property bool selected: false
    property bool listHasFocus: false
    property bool hasKeyboard: false

    implicitHeight: Theme.controlHeight + Theme.spaceTiny
    leftPadding: collapsed ? (width - Theme.iconSize) / 2 : Theme.spaceMedium
    rightPadding: collapsed ? leftPadding : Theme.spaceSmall
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: title
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: row.clicked()

    contentItem: RowLayout {
        spacing: Theme.spaceMedium

        SymbolIcon {
            symbolName: row.symbolName
            color: row.selected ? Theme.accent : Theme.textSecondary
        }
        Text {
            Layout.fillWidth: true
            text: row.title
            textFormat: Text.PlainText
            font: Theme.bodyFont
            color: Theme.text
            elide: Text.ElideRight
            visible: !row.collapsed
        }
    }
    background: RowBackground {
        selected: row.selected
        hovered: row.hovered
        listHasFocus: true
        hasKeyboard: row.hasKeyboard
    }

    Tip {
        text: row.title
        shown: row.collapsed && (row.hovered || row.hasKeyboard)
    }
}
