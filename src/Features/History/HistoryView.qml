pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.History

// Every cleanup that was tried, with what became of the chosen one beside the list.
ScreenView {
    id: view

    required property HistoryViewModel viewModel

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        FileNotice {
            Layout.topMargin: Theme.spaceLarge
            Layout.leftMargin: Theme.pageMargin
            Layout.rightMargin: Theme.pageMargin
            text: view.viewModel.fileNotice
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            EmptyStateView {
                anchors.fill: parent
                visible: !view.viewModel.showsList
                title: qsTr("No cleanups yet")
                message: qsTr("Every attempt — successful, failed, or cancelled — is recorded here with where your work went.")
                symbolName: "clock.arrow.circlepath"
            }

            ListDetailSplit {
                anchors.fill: parent
                visible: view.viewModel.showsList
                list: HistoryList {
                    anchors.fill: parent
                    viewModel: view.viewModel
                }

                HistoryDetailView {
                    anchors.fill: parent
                    visible: receipt.isPresent
                    receipt: view.viewModel.detail
                    notice: view.viewModel.notice
                    onCopySummary: view.viewModel.copySummary()
                    onRevealVaultFiles: view.viewModel.revealVaultFiles()
                }
                EmptyStateView {
                    anchors.fill: parent
                    visible: !view.viewModel.detail.isPresent
                    title: qsTr("Select a cleanup")
                    message: qsTr("Receipts record the recovery branch, commit, pull request, and anything archived.")
                    symbolName: "doc.text"
                }
            }
        }
    }
}
