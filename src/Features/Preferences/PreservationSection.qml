import QtQuick
import Cairnfield.Components
import Cairnfield.Preferences

// What a cleanup keeps, unless it is told otherwise.
FormSection {
    id: section

    required property PreferencesViewModel viewModel

    title: qsTr("Preservation")

    ToggleRow {
        label: qsTr("Open a draft pull request when preserving")
        isOn: section.viewModel.draftPullRequests.isOn
        onTurned: isOn => section.viewModel.draftPullRequests.turn(isOn)
    }
    ToggleRow {
        label: qsTr("Copy small local-only files to the Recovery Vault")
        isOn: section.viewModel.smallLocalFiles.isOn
        onTurned: isOn => section.viewModel.smallLocalFiles.turn(isOn)
    }
    FormRow {
        label: qsTr("Recovery branch prefix")

        TextEntry {
            id: prefix

            title: qsTr("Prefix")
            prompt: qsTr("Prefix")
            implicitWidth: Theme.searchMinimumWidth
            text: section.viewModel.branchPrefix
            onTextEdited: section.viewModel.branchPrefix = text
            onEditingFinished: section.viewModel.doneTyping()
        }
    }
    StepperSettingRow {
        setting: section.viewModel.vaultRetention
    }
}
