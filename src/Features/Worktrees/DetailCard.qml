import QtQuick
import QtQuick.Layouts
import Cairnfield.Components

// A section of the detail: labels with their values, or one sentence in their place.
StatusSurface {
    id: card

    required property string title
    required property var rows
    property string message

    contentItem: ColumnLayout {
        spacing: Theme.spaceSmall

        SectionHeader {
            Layout.fillWidth: true
            Layout.bottomMargin: Theme.spaceTiny
            title: card.title
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
                valueFont: label === "HEAD" ? Theme.fixedFont : Theme.bodyFont
            }
        }
    }
}
