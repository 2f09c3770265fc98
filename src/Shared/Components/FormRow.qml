import QtQuick
import QtQuick.Layouts

// One setting: its name on the left, its control at the trailing edge. The control names itself for assistive technology.
RowLayout {
    id: row

    required property string label
    default property alias control: holder.data

    Layout.fillWidth: true
    spacing: Theme.spaceLarge

    InfoText {
        Layout.fillWidth: true
        Layout.minimumHeight: Theme.controlHeight
        text: row.label
        verticalAlignment: Text.AlignVCenter
    }
    RowLayout {
        id: holder

        spacing: Theme.spaceSmall
    }
}
