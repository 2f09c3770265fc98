import QtQuick
import QtQuick.Layouts

// A group of settings: its title, and a card that holds one row after another.
ColumnLayout {
    id: section

    required property string title
    default property alias rows: column.data

    Layout.fillWidth: true
    spacing: Theme.spaceSmall
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    InfoText {
        Layout.fillWidth: true
        text: section.title
        font: Theme.headlineFont
        Accessible.role: Accessible.Heading
    }
    StatusSurface {
        Layout.fillWidth: true
        verticalPadding: Theme.spaceSmall

        ColumnLayout {
            id: column

            width: parent.width
            spacing: Theme.spaceSmall
        }
    }
}
