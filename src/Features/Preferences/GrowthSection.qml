import QtQuick
import Cairnfield.Components
import Cairnfield.Preferences

// When a folder that grows is news.
FormSection {
    id: section

    required property PreferencesViewModel viewModel

    title: qsTr("Growth alerts")

    GigabyteRow {
        label: qsTr("Alert when a folder grows by")
        setting: section.viewModel.growthBytes
    }
    FractionRow {
        label: qsTr("Or grows by")
        setting: section.viewModel.growthFraction
    }
    FormNote {
        text: qsTr("Measured over the last 24 hours.")
    }
}
