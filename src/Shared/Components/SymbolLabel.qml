import QtQuick
import QtQuick.Layouts

// A line of text led by a symbol. It wraps; the symbol stays beside the first line.
RowLayout {
    id: label

    required property string text
    required property string symbolName
    property color tint: Theme.text
    property color ink: Theme.text
    property font font: Theme.bodyFont

    spacing: Theme.spaceSmall

    SymbolIcon {
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: Math.max(0, (metrics.height - height) / 2)
        symbolName: label.symbolName
        color: label.tint
    }
    InfoText {
        Layout.fillWidth: true
        text: label.text
        font: label.font
        color: label.ink
    }
    FontMetrics {
        id: metrics
        font: label.font
    }
}
