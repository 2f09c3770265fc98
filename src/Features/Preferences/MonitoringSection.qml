import QtQuick
import Cairnfield.Components
import Cairnfield.Preferences

// What goes on while the program runs, and whether it starts by itself.
FormSection {
    id: section

    required property PreferencesViewModel viewModel

    title: qsTr("Monitoring")

    ToggleRow {
        label: qsTr("Watch storage while Cairnfield runs")
        isOn: section.viewModel.isMonitoring
        onTurned: isOn => section.viewModel.setMonitoring(isOn)
    }
    ToggleRow {
        label: qsTr("Launch at login")
        isOn: section.viewModel.launchesAtLogin
        onTurned: isOn => section.viewModel.setLaunchAtLogin(isOn)
    }
    StepperSettingRow {
        setting: section.viewModel.rescanInterval
    }
    StepperSettingRow {
        setting: section.viewModel.reconcileInterval
    }
}
