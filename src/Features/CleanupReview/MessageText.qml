import QtQuick
import Cairnfield.Components

// What a program had to say, line by line as it said it: to be marked and copied.
TextEdit {
    id: message

    textFormat: TextEdit.PlainText
    font: Theme.bodyFont
    color: Theme.text
    wrapMode: TextEdit.WrapAtWordBoundaryOrAnywhere
    readOnly: true
    selectByMouse: true
    selectionColor: Theme.accent
    selectedTextColor: Theme.textOnAccent
    activeFocusOnTab: true
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    FocusRing {
        anchors.margins: -Theme.spaceTiny
        shown: message.activeFocus
    }
}
