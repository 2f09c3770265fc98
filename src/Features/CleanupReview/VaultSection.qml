import QtQuick
import QtQuick.Layouts
import Cairnfield.CleanupReview
import Cairnfield.Components

// What looks sensitive, which no push may hold, and whether the vault keeps it: at the top of the worktree, and below.
ColumnLayout {
    id: section

    required property CleanupReviewViewModel viewModel
    readonly property var nested: viewModel.nested

    spacing: Theme.spaceLarge
    visible: viewModel.sensitiveLines.length > 0 || nested.statement !== ""

    ColumnLayout {
        Layout.fillWidth: true
        spacing: Theme.spaceTiny
        visible: section.viewModel.sensitiveLines.length > 0

        InfoText {
            Layout.fillWidth: true
            text: qsTr("Ignored files that look sensitive are never pushed.")
            color: Theme.textSecondary
        }
        ToggleRow {
            label: qsTr("Copy them to the Recovery Vault instead")
            isOn: section.viewModel.includeSensitiveInVault
            onTurned: isOn => section.viewModel.includeSensitiveInVault = isOn
        }
        Repeater {
            model: section.viewModel.sensitiveLines
            delegate: InfoText {
                required property string modelData

                Layout.fillWidth: true
                text: modelData
                color: Theme.textSecondary
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            }
        }
    }
    ColumnLayout {
        Layout.fillWidth: true
        spacing: Theme.spaceTiny
        visible: section.nested.statement !== ""

        InfoText {
            Layout.fillWidth: true
            text: section.nested.statement
            color: Theme.textSecondary
        }
        ToggleRow {
            label: qsTr("Copy these to the Recovery Vault too")
            isOn: section.viewModel.includeNestedInVault
            onTurned: isOn => section.viewModel.includeNestedInVault = isOn
        }
        LineList {
            Layout.fillWidth: true
            title: section.nested.statement
            model: section.nested.lines
            ink: Theme.textSecondary
        }
    }
}
