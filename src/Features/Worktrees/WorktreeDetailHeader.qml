import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Worktrees

// Which worktree this is and the verdict on it.
ColumnLayout {
    id: header

    required property WorktreeDetail worktree

    spacing: Theme.spaceSmall

    InfoText {
        Layout.fillWidth: true
        text: header.worktree.branch
        font: Theme.titleFont
        wrapMode: Text.NoWrap
        elide: Text.ElideRight
        Accessible.role: Accessible.Heading

        HoverHandler {
            id: pointer
        }
        Tip {
            text: header.worktree.branch
            shown: pointer.hovered && parent.truncated
        }
    }
    ElidedPath {
        Layout.fillWidth: true
        path: header.worktree.path
    }
    StatusBadge {
        Layout.topMargin: Theme.spaceTiny
        title: header.worktree.disposition
        symbolName: header.worktree.symbolName
        tint: Theme.tint(header.worktree.tint)
    }
    InfoText {
        Layout.fillWidth: true
        text: header.worktree.explanation
    }
    Repeater {
        model: header.worktree.notes
        delegate: SymbolLabel {
            required property var modelData

            Layout.fillWidth: true
            text: modelData.text
            symbolName: modelData.symbolName
            tint: Theme.textSecondary
            ink: Theme.textSecondary
        }
    }
}
