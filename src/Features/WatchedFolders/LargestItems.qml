import QtQuick
import QtQuick.Layouts
import Cairnfield.Components

// What takes most of a folder, largest first.
ColumnLayout {
    id: section

    required property var items

    spacing: Theme.spaceTiny

    Rectangle {
        Layout.fillWidth: true
        Layout.topMargin: Theme.spaceTiny
        Layout.bottomMargin: Theme.spaceTiny
        implicitHeight: Theme.hairline
        color: Theme.border
    }
    InfoText {
        text: qsTr("Largest items")
        font: Theme.captionFont
        color: Theme.textSecondary
        Accessible.role: Accessible.Heading
    }
    Repeater {
        model: section.items
        delegate: RowLayout {
            id: item

            required property var modelData

            Layout.fillWidth: true
            spacing: Theme.spaceLarge
            Accessible.role: Accessible.Grouping
            Accessible.name: modelData.name + ", " + modelData.size

            Text {
                Layout.fillWidth: true
                text: item.modelData.name
                textFormat: Text.PlainText
                font: Theme.bodyFont
                color: Theme.text
                elide: Text.ElideMiddle
            }
            Text {
                text: item.modelData.size
                textFormat: Text.PlainText
                font: Theme.bodyFont
                color: Theme.text
            }
        }
    }
}
