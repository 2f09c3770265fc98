import QtQuick
import QtQuick.Layouts
import Cairnfield.CleanupReview
import Cairnfield.Components

// How far the cleanup has come.
ColumnLayout {
    id: progress

    required property CleanupStageModel stages

    spacing: Theme.spaceLarge

    InfoText {
        Layout.fillWidth: true
        text: qsTr("Preservation happens first. Removal only runs after the remote copy is verified.")
    }
    ColumnLayout {
        Layout.fillWidth: true
        spacing: Theme.spaceMedium
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Stages")

        Repeater {
            model: progress.stages
            delegate: StageRow {
                Layout.fillWidth: true
            }
        }
    }
}
