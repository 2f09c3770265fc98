import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Cairnfield.Components

// One action of the panel, as wide as the panel is.
T.Button {
    id: control

    required property string symbolName

    implicitHeight: Theme.controlHeight
    horizontalPadding: Theme.spaceSmall
    spacing: Theme.spaceMedium
    font: Theme.bodyFont
    Accessible.name: text
    Accessible.onPressAction: control.clicked()
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()

    contentItem: RowLayout {
        spacing: control.spacing

        SymbolIcon {
            symbolName: control.symbolName
            color: Theme.textSecondary
        }
        Text {
            Layout.fillWidth: true
            text: control.text
            textFormat: Text.PlainText
            font: control.font
            color: Theme.text
            elide: Text.ElideRight
        }
    }
    background: RowBackground {
        hovered: control.hovered || control.down
        hasKeyboard: control.visualFocus
    }
}
