import QtQuick
import QtQuick.Layouts
import Cairnfield.Components

// How the cleanup ended, and where the work is now.
ColumnLayout {
    id: receipt

    required property var outcome

    spacing: Theme.spaceSmall

    SymbolLabel {
        Layout.fillWidth: true
        text: receipt.outcome.title
        symbolName: receipt.outcome.symbolName
        tint: Theme.tint(receipt.outcome.tint)
        font: Theme.headlineFont
    }
    MessageText {
        Layout.fillWidth: true
        text: receipt.outcome.failure
        visible: text !== ""
    }
    InfoText {
        Layout.fillWidth: true
        text: receipt.outcome.note
        visible: text !== ""
    }
    ReviewSection {
        Layout.fillWidth: true
        Layout.topMargin: Theme.spaceSmall
        title: qsTr("Where your work is")
        visible: receipt.outcome.whereabouts.length > 0

        Repeater {
            model: receipt.outcome.whereabouts
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
