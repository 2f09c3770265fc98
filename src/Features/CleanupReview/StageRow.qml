import QtQuick
import QtQuick.Layouts
import Cairnfield.Components

// One stage of the cleanup.
RowLayout {
    id: row

    required property string stageTitle
    required property string symbolName
    required property string tint
    required property string progress
    readonly property bool isPending: symbolName === "circle"
    readonly property bool isUnderWay: symbolName === "circle.dotted"

    spacing: Theme.spaceSmall
    Accessible.role: Accessible.ListItem
    Accessible.name: stageTitle
    Accessible.description: progress

    StageSymbol {
        symbolName: row.symbolName
        turns: row.isUnderWay
        color: Theme.tint(row.tint)
    }
    Text {
        Layout.fillWidth: true
        text: row.stageTitle
        textFormat: Text.PlainText
        font.pointSize: Theme.bodyFont.pointSize
        font.weight: row.isUnderWay ? Font.DemiBold : Font.Normal
        color: row.isPending ? Theme.textSecondary : Theme.text
        wrapMode: Text.Wrap
    }
}
