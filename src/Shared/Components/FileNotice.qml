import QtQuick
import QtQuick.Layouts

// What should be known about the file that holds what a screen shows: one that could not be understood, or not be read.
// Nothing while all is well.
SymbolLabel {
    Layout.fillWidth: true
    symbolName: "exclamationmark.triangle"
    tint: Theme.orange
    ink: Theme.textSecondary
    font: Theme.captionFont
    visible: text !== ""
}
