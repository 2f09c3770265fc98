import QtQuick
import QtQuick.Layouts

// A section of a detail: its title, if it has one, and labels with their values or one sentence in their place. A row has
// `label`, `value` and, where a person would copy the value, `isFixed`.
StatusSurface {
    id: card

    property string title
    required property var rows
    property string message

    contentItem: ColumnLayout {
        spacing: Theme.spaceSmall

        SectionHeader {
            Layout.fillWidth: true
            Layout.bottomMargin: Theme.spaceTiny
            title: card.title
            visible: title !== ""
        }
        InfoText {
            Layout.fillWidth: true
            text: card.message
            color: Theme.textSecondary
            visible: text !== ""
        }
        Repeater {
            model: card.rows
            delegate: DetailRow {
                required property var modelData

                Layout.fillWidth: true
                label: modelData.label
                value: modelData.value
                valueFont: modelData.isFixed ? Theme.fixedFont : Theme.bodyFont
            }
        }
    }
}
