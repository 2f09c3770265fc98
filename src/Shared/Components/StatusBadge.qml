import QtQuick

// A state in words, with its symbol, in the tint of what it means.
Rectangle {
    id: badge

    required property string title
    required property string symbolName
    required property color tint

    implicitWidth: content.implicitWidth + 2 * Theme.spaceSmall
    implicitHeight: content.implicitHeight + Theme.spaceTiny
    radius: height / 2
    color: Qt.alpha(tint, Theme.badgeOpacity)
    border.color: tint
    border.width: Theme.highContrast ? Theme.hairline : 0
    Accessible.role: Accessible.StaticText
    Accessible.name: title

    Row {
        id: content

        anchors.centerIn: parent
        spacing: Theme.spaceTiny

        SymbolIcon {
            anchors.verticalCenter: parent.verticalCenter
            symbolName: badge.symbolName
            color: badge.tint
            size: 14
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: badge.title
            textFormat: Text.PlainText
            font: Theme.captionFont
            color: badge.tint
        }
    }
}
