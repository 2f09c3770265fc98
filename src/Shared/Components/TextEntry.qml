import QtQuick
import QtQuick.Templates as T

// One line to type into, named by `title`.
T.TextField {
    id: field

    required property string title
    property string prompt

    implicitHeight: Theme.controlHeight
    leftPadding: Theme.spaceMedium
    rightPadding: Theme.spaceMedium
    verticalAlignment: TextInput.AlignVCenter
    font: Theme.bodyFont
    color: Theme.text
    selectionColor: Theme.accent
    selectedTextColor: Theme.textOnAccent
    selectByMouse: true
    Accessible.name: title

    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.surface
        border.color: Theme.controlBorder
        border.width: Theme.hairline

        FocusRing {
            shown: field.activeFocus
        }
    }

    Text {
        anchors.fill: parent
        anchors.leftMargin: field.leftPadding
        anchors.rightMargin: field.rightPadding
        text: field.prompt
        textFormat: Text.PlainText
        font: field.font
        color: Theme.textSecondary
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        visible: field.text === "" && field.preeditText === ""
    }
}
