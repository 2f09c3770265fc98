import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Worktrees

// One worktree: its branch, where it lies, and in small what is to be known of it.
Item {
    id: row

    required property worktreeListItem worktree
    required property bool selected
    required property bool listHasFocus

    signal chosen

    Accessible.role: Accessible.ListItem
    Accessible.name: worktree.title
    Accessible.description: worktree.description
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.focusable: true
    Accessible.focused: selected && listHasFocus
    Accessible.onPressAction: row.chosen()

    TapHandler {
        gesturePolicy: TapHandler.ReleaseWithinBounds
        onTapped: row.chosen()
    }
    HoverHandler {
        id: pointer
    }
    RowBackground {
        anchors.fill: parent
        anchors.leftMargin: Theme.spaceSmall
        anchors.rightMargin: Theme.spaceSmall
        selected: row.selected
        hovered: pointer.hovered
        listHasFocus: row.listHasFocus
        hasKeyboard: row.selected && row.listHasFocus
    }
    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.spaceLarge
        anchors.rightMargin: Theme.spaceLarge
        anchors.topMargin: Theme.rowPadding
        anchors.bottomMargin: Theme.rowPadding
        spacing: Theme.spaceHair

        RowLayout {
            spacing: Theme.spaceTiny

            Text {
                id: branch

                Layout.fillWidth: true
                text: row.worktree.title
                textFormat: Text.PlainText
                font: Theme.bodyFont
                color: Theme.text
                elide: Text.ElideRight

                HoverHandler {
                    id: branchPointer
                }
                Tip {
                    text: branch.text
                    shown: branchPointer.hovered && branch.truncated
                }
            }
            SymbolIcon {
                symbolName: "pin.fill"
                size: 14
                color: Theme.textSecondary
                visible: row.worktree.isPinned
                Accessible.ignored: false
                Accessible.role: Accessible.Graphic
                Accessible.name: qsTr("Pinned")
            }
        }
        ElidedPath {
            Layout.fillWidth: true
            path: row.worktree.path
        }
        RowLayout {
            spacing: Theme.spaceTiny

            SymbolIcon {
                symbolName: row.worktree.symbolName
                size: 14
                color: Theme.tint(row.worktree.tint)
            }
            Text {
                text: row.worktree.disposition
                textFormat: Text.PlainText
                font: Theme.captionFont
                color: Theme.tint(row.worktree.tint)
            }
            Text {
                id: remarks

                Layout.fillWidth: true
                text: row.worktree.remarks
                textFormat: Text.PlainText
                font: Theme.captionFont
                color: Theme.textSecondary
                elide: Text.ElideRight

                HoverHandler {
                    id: remarksPointer
                }
                Tip {
                    text: remarks.text
                    shown: remarksPointer.hovered && remarks.truncated
                }
            }
            Text {
                Layout.leftMargin: Theme.spaceTiny
                text: row.worktree.size
                textFormat: Text.PlainText
                font: Theme.captionFont
                color: row.worktree.isSizeKnown ? Theme.text : Theme.textSecondary
            }
        }
    }
}
