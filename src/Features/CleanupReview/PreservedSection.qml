import QtQuick
import QtQuick.Layouts
import Cairnfield.CleanupReview
import Cairnfield.Components

// Where the work will be afterwards, with what may be chosen about it.
ReviewSection {
    id: section

    required property CleanupReviewViewModel viewModel
    readonly property var preserved: viewModel.preserved
    readonly property bool isPushed: preserved.isPushed

    title: qsTr("2 · What is preserved")

    SymbolLabel {
        Layout.fillWidth: true
        text: section.preserved.text
        symbolName: section.preserved.symbolName
    }
    Repeater {
        model: section.preserved.rows
        delegate: DetailRow {
            required property var modelData

            Layout.fillWidth: true
            label: modelData.label
            value: modelData.value
        }
    }
    ToggleRow {
        label: qsTr("Include untracked files")
        isOn: section.viewModel.includeUntracked
        visible: section.isPushed
        onTurned: isOn => section.viewModel.includeUntracked = isOn
    }
    ToggleRow {
        label: qsTr("Open a draft pull request")
        isOn: section.viewModel.createPullRequest
        visible: section.isPushed
        onTurned: isOn => section.viewModel.createPullRequest = isOn
    }
    FormNote {
        Layout.topMargin: -Theme.spaceSmall
        text: qsTr("Sign in with the GitHub CLI to enable pull requests.")
        visible: section.isPushed && !section.viewModel.isSignedIn
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.spaceLarge
        visible: section.isPushed

        InfoText {
            text: message.title
        }
        TextEntry {
            id: message

            Layout.fillWidth: true
            title: qsTr("Commit message")
            text: section.viewModel.commitMessage
            onTextEdited: section.viewModel.commitMessage = text
        }
    }
    VaultSection {
        Layout.fillWidth: true
        Layout.topMargin: Theme.spaceSmall
        viewModel: section.viewModel
    }
}
