import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Cairnfield.Components

// Something is under way and nobody knows for how long.
T.ProgressBar {
    id: line

    required property string text

    indeterminate: true
    implicitHeight: implicitContentHeight
    Accessible.name: text

    contentItem: RowLayout {
        spacing: Theme.spaceSmall

        StageSymbol {
            symbolName: "circle.dotted"
            turns: line.visible
            color: Theme.textSecondary
        }
        Text {
            Layout.fillWidth: true
            text: line.text
            textFormat: Text.PlainText
            font: Theme.bodyFont
            color: Theme.text
            wrapMode: Text.Wrap
        }
    }
}
