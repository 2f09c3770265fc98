import QtQuick
import QtQuick.Layouts
import Cairnfield.CleanupReview
import Cairnfield.Components

// What a cleanup of one worktree would do, the cleanup itself, and its receipt. While it runs, nothing closes this.
Sheet {
    id: sheet

    required property CleanupReviewViewModel viewModel
    readonly property string phase: viewModel.phase

    title: qsTr("Preserve & Clean")
    subtitle: viewModel.subtitle
    canClose: viewModel.canClose
    visible: viewModel.isOpen
    onClosed: viewModel.close()
    onOpened: beginAgain()
    onPhaseChanged: if (visible) beginAgain()
    onAccepted: phase === "review" ? viewModel.start() : viewModel.close()

    BusyLine {
        Layout.fillWidth: true
        text: qsTr("Checking the worktree…")
        visible: sheet.phase === "checking"
    }
    SymbolLabel {
        Layout.fillWidth: true
        text: qsTr("Nothing was changed")
        symbolName: "hand.raised"
        tint: Theme.orange
        font: Theme.headlineFont
        visible: sheet.phase === "blocked"
    }
    MessageText {
        Layout.fillWidth: true
        text: sheet.viewModel.blockedMessage
        visible: sheet.phase === "blocked"
    }
    ReviewBody {
        Layout.fillWidth: true
        viewModel: sheet.viewModel
        visible: sheet.phase === "review"
    }
    ProgressBody {
        Layout.fillWidth: true
        stages: sheet.viewModel.stages
        visible: sheet.phase === "running"
    }
    ReceiptBody {
        Layout.fillWidth: true
        outcome: sheet.viewModel.outcome
        visible: sheet.phase === "finished"
    }

    footer: [
        InfoText {
            Layout.fillWidth: true
            Layout.minimumHeight: Theme.controlHeight
            text: qsTr("Cancelling now could leave work half-preserved.")
            color: Theme.textSecondary
            verticalAlignment: Text.AlignVCenter
            visible: sheet.phase === "running"
        },
        PlainButton {
            text: qsTr("Copy recovery summary")
            symbolName: "doc.on.doc"
            visible: sheet.phase === "finished" && sheet.viewModel.canCopySummary
            onClicked: sheet.viewModel.copyRecoverySummary()
        },
        PlainButton {
            text: qsTr("Cancel")
            visible: sheet.phase === "review"
            onClicked: sheet.viewModel.close()
        },
        PrimaryButton {
            text: qsTr("Preserve & Clean")
            enabled: sheet.viewModel.canStart
            visible: sheet.phase === "review"
            onClicked: sheet.viewModel.start()
        },
        PrimaryButton {
            text: qsTr("Close")
            visible: sheet.phase !== "review" && sheet.phase !== "running"
            onClicked: sheet.viewModel.close()
        }
    ]
}
