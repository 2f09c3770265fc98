import QtQuick

// A piece of text that assistive technology reads. Plain always: what comes from outside is never markup.
Text {
    textFormat: Text.PlainText
    font: Theme.bodyFont
    color: Theme.text
    wrapMode: Text.Wrap
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
