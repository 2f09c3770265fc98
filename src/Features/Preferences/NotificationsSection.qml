import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Preferences

// Whether the program says something.
FormSection {
    id: section

    required property PreferencesViewModel viewModel

    title: qsTr("Notifications")

    ToggleRow {
        label: qsTr("Notify me about storage and cleanup")
        isOn: section.viewModel.notifies
        onTurned: isOn => section.viewModel.setNotifies(isOn)
    }
    SymbolLabel {
        Layout.fillWidth: true
        text: qsTr("Notifications are turned off in System Settings.")
        symbolName: "bell.slash"
        tint: Theme.orange
        visible: section.viewModel.areNotificationsDenied
    }
    FormNote {
        text: qsTr("Cairnfield posts one notification per incident and replaces it rather than stacking repeats.")
    }
}
