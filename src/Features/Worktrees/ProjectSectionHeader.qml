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

    HoverHandler {
        id: pointer
    }
    Tip {
        text: header.project.title + "\n" + header.project.description
        shown: pointer.hovered && (name.truncated || details.truncated)
    }
    FontMetrics {
        id: caption
        font: Theme.captionFont
    }
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
                id: name

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
            id: details

            Layout.fillWidth: true
            // The text begins with a blank before its first dot; the dot stands below the name all the same.
            Layout.leftMargin: -caption.advanceWidth(" ")
            text: header.project.details
            textFormat: Text.PlainText
            font: Theme.captionFont
            color: Theme.textSecondary
            elide: Text.ElideRight
            visible: text !== ""
        }
    }
}
