import QtQuick
import QtQuick.Layouts

// The head of a section: its title, what stands at the trailing edge, and a line below.
ColumnLayout {
    id: header

    required property string title
    property string trailing
    property string subtitle

    spacing: 0
    Accessible.role: Accessible.Heading
    Accessible.name: title

    RowLayout {
        spacing: Theme.spaceSmall

        InfoText {
            Layout.fillWidth: true
            text: header.title
            font: Theme.headlineFont
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
        }
        InfoText {
            text: header.trailing
            font: Theme.captionFont
            color: Theme.textSecondary
            wrapMode: Text.NoWrap
            visible: text !== ""
        }
    }
    InfoText {
        Layout.fillWidth: true
        text: header.subtitle
        font: Theme.captionFont
        color: Theme.textSecondary
        visible: text !== ""
    }
}
