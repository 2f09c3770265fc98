import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Worktrees

// Whether and how the worktree can be cleaned.
StatusSurface {
    id: card

    required property WorktreeDetail worktree

    signal preserveAndClean

    contentItem: ColumnLayout {
        spacing: Theme.spaceMedium

        SectionHeader {
            Layout.fillWidth: true
            title: qsTr("Cleanup")
        }
        SymbolLabel {
            Layout.fillWidth: true
            text: card.worktree.cleanupMessage
            symbolName: card.worktree.cleanupSymbolName
            tint: Theme.textSecondary
            visible: symbolName !== ""
        }
        InfoText {
            Layout.fillWidth: true
            text: card.worktree.cleanupMessage
            visible: card.worktree.cleanupSymbolName === ""
        }
        PrimaryButton {
            text: qsTr("Preserve & Clean…")
            visible: card.worktree.offersCleanup
            enabled: card.worktree.isCleanupEnabled
            onClicked: card.preserveAndClean()
        }
        InfoText {
            Layout.fillWidth: true
            text: card.worktree.cleanupNote
            font: Theme.captionFont
            color: Theme.textSecondary
            visible: text !== ""
        }
    }
}
