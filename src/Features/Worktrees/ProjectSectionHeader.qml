import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Worktrees

// The head of a section: a project with what its worktrees add up to, or a disposition.
Item {
    id: header

    required property worktreeListItem project

    implicitHeight: column.implicitHeight + Theme.spaceLarge + Theme.spaceTiny
    Accessible.role: Accessible.Heading
    Accessible.name: project.title
    Accessible.description: project.description

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.leftMargin: Theme.spaceLarge
        anchors.rightMargin: Theme.spaceLarge
        anchors.bottomMargin: Theme.spaceTiny
        spacing: 0

        RowLayout {
            spacing: Theme.spaceSmall

            SymbolIcon {
                symbolName: header.project.symbolName
                color: Theme.tint(header.project.tint)
                visible: header.project.symbolName !== ""
            }
            Text {
                Layout.fillWidth: true
                text: header.project.title
                textFormat: Text.PlainText
                font: Theme.headlineFont
                color: Theme.text
                elide: Text.ElideRight
            }
            Text {
                text: header.project.summary
                textFormat: Text.PlainText
                font: Theme.captionFont
                color: Theme.textSecondary
                visible: text !== ""
            }
        }
        Text {
            Layout.fillWidth: true
            text: header.project.details
            textFormat: Text.PlainText
            font: Theme.captionFont
            color: Theme.textSecondary
            elide: Text.ElideRight
            visible: text !== ""
        }
    }
}
