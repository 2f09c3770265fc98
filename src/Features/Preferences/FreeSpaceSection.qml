import QtQuick
import Cairnfield.Components
import Cairnfield.Preferences

// When low space is told, and how its limits are found.
FormSection {
    id: section

    required property PreferencesViewModel viewModel

    title: qsTr("Free space alerts")

    FormRow {
        label: qsTr("Thresholds")

        MenuPicker {
            id: mode

            title: qsTr("Thresholds")
            model: section.viewModel.thresholdModes
            onActivated: index => section.viewModel.chooseThresholdMode(index)

            Binding {
                target: mode
                property: "currentIndex"
                value: section.viewModel.thresholdModeIndex
            }
        }
    }
    FormNote {
        text: section.viewModel.explanation
    }
    FractionRow {
        label: qsTr("Warn when free space falls below")
        setting: section.viewModel.warningPercentage
        visible: section.viewModel.thresholdMode === "percentage"
    }
    FractionRow {
        label: qsTr("Critical when free space falls below")
        setting: section.viewModel.criticalPercentage
        visible: section.viewModel.thresholdMode === "percentage"
    }
    GigabyteRow {
        label: qsTr("Warn when free space falls below")
        setting: section.viewModel.warningBytes
        visible: section.viewModel.thresholdMode === "absolute"
    }
    GigabyteRow {
        label: qsTr("Critical when free space falls below")
        setting: section.viewModel.criticalBytes
        visible: section.viewModel.thresholdMode === "absolute"
    }
    ValueRow {
        label: qsTr("Currently")
        value: section.viewModel.currently
        visible: value !== ""
    }
}
