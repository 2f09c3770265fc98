import QtQuick
import QtQuick.Layouts

// A label on the left and its value at the trailing edge. The value is `value`, or any view given as the child. A label that
// may be long gives way to the value with `elidesLabel`.
RowLayout {
    id: row

    required property string label
    property string value
    property font valueFont: Theme.bodyFont
    property bool elidesLabel: false
    default property alias content: holder.data

    spacing: Theme.spaceLarge
    Accessible.role: Accessible.Grouping
    Accessible.name: row.value === "" ? row.label : row.label + ": " + row.value

    InfoText {
        id: labelText

        Layout.alignment: Qt.AlignTop
        Layout.fillWidth: row.elidesLabel
        text: row.label
        color: Theme.textSecondary
        wrapMode: Text.NoWrap
        elide: row.elidesLabel ? Text.ElideMiddle : Text.ElideNone

        HoverHandler {
            id: pointer
        }
        Tip {
            text: row.label
            shown: labelText.truncated && pointer.hovered
        }
    }
    InfoText {
        Layout.fillWidth: !row.elidesLabel
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
