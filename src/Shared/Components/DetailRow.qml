import QtQuick
import QtQuick.Layouts

// A label on the left and its value at the trailing edge. The value is `value`, or any view given as the child.
RowLayout {
    id: row

    required property string label
    property string value
    property font valueFont: Theme.bodyFont
    default property alias content: holder.data

    spacing: Theme.spaceLarge
    Accessible.role: Accessible.Grouping
    Accessible.name: row.value === "" ? row.label : row.label + ": " + row.value

    InfoText {
        Layout.alignment: Qt.AlignTop
        text: row.label
        color: Theme.textSecondary
        wrapMode: Text.NoWrap
    }
    InfoText {
        Layout.fillWidth: true
        text: row.value
        font: row.valueFont
        horizontalAlignment: Text.AlignRight
        wrapMode: Text.WrapAtWordBoundaryOrAnywhere
        visible: holder.children.length === 0
    }
    RowLayout {
        id: holder

        Layout.fillWidth: true
        layoutDirection: Qt.RightToLeft
        visible: children.length > 0
    }
}
