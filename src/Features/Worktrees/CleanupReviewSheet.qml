import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Worktrees

// What a cleanup of this worktree looks at before anything is removed.
Sheet {
    id: sheet

    required property WorktreeDetail worktree

    title: qsTr("Preserve & Clean")
    onAccepted: sheet.close()

    WorktreeDetailHeader {
        Layout.fillWidth: true
        worktree: sheet.worktree
    }
    InfoText {
        Layout.fillWidth: true
        Layout.topMargin: Theme.spaceSmall
        text: qsTr("Before a worktree is removed, Cairnfield checks that")
    }
    Repeater {
        model: [
            qsTr("Git still shows it as it is listed here"),
            qsTr("nothing is using it, and no merge or rebase is unfinished"),
            qsTr("every commit is on the remote, or on a recovery branch that has arrived there"),
            qsTr("local files that Git does not know are kept where you want them kept")
        ]
        delegate: SymbolLabel {
            required property string modelData

            Layout.fillWidth: true
            text: modelData
            symbolName: "circle"
            tint: Theme.textSecondary
        }
    }
    InfoText {
        Layout.fillWidth: true
        text: qsTr("Nothing has been changed.")
        color: Theme.textSecondary
    }

    footer: [
        PrimaryButton {
            text: qsTr("Close")
            focus: true
            onClicked: sheet.close()
        }
    ]
}
