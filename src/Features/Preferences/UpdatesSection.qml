import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Preferences

// Which version this is, and how a newer one is found; or why none is looked for.
FormSection {
    id: section

    required property PreferencesViewModel viewModel
    readonly property bool isConfigured: viewModel.updateProblem === ""

    title: qsTr("Updates")

    ValueRow {
        label: qsTr("Version")
        value: section.viewModel.version
    }
    ToggleRow {
        label: qsTr("Check for updates automatically")
        isOn: section.viewModel.checksForUpdates
        visible: section.isConfigured
        onTurned: isOn => section.viewModel.setChecksForUpdates(isOn)
    }
    ToggleRow {
        label: qsTr("Download updates in the background")
        isOn: section.viewModel.downloadsUpdates
        visible: section.isConfigured
        onTurned: isOn => section.viewModel.setDownloadsUpdates(isOn)
    }
    ValueRow {
        label: qsTr("Last checked")
        value: section.viewModel.lastChecked
        visible: section.isConfigured
    }
    SymbolLabel {
        Layout.fillWidth: true
        Layout.topMargin: Theme.spaceTiny
        Layout.bottomMargin: Theme.spaceTiny
        text: section.viewModel.updateProblem
        symbolName: "exclamationmark.triangle"
        tint: Theme.orange
        visible: !section.isConfigured
    }
    PlainButton {
        Layout.topMargin: Theme.spaceTiny
        Layout.bottomMargin: Theme.spaceTiny
        text: qsTr("Check for updates…")
        enabled: section.viewModel.canCheckForUpdates
        onClicked: section.viewModel.checkForUpdates()
    }
}
