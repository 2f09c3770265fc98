import QtQuick
import QtQuick.Layouts
import Cairnfield.Components

// A numbered part of the review under its title, set off by a line.
ColumnLayout {
    id: section

    required property string title
    default property alias content: body.data

    spacing: Theme.spaceMedium

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: Theme.hairline
        color: Theme.border
    }
    SectionHeader {
        Layout.fillWidth: true
        title: section.title
    }
    ColumnLayout {
        id: body

        Layout.fillWidth: true
        spacing: Theme.spaceSmall
    }
}
