import QtQuick
import QtQuick.Layouts
import Cairnfield.CleanupReview
import Cairnfield.Components

// What was found, what is kept and what goes, one below the other.
ColumnLayout {
    id: review

    required property CleanupReviewViewModel viewModel
    readonly property var going: viewModel.nestedThatGo

    spacing: Theme.spaceLarge

    ColumnLayout {
        Layout.fillWidth: true
        spacing: Theme.spaceSmall
        visible: review.viewModel.warnings.length > 0

        Repeater {
            model: review.viewModel.warnings
            delegate: SymbolLabel {
                required property string modelData

                Layout.fillWidth: true
                text: modelData
                symbolName: "exclamationmark.triangle"
                tint: Theme.orange
            }
        }
    }
    ReviewSection {
        Layout.fillWidth: true
        title: qsTr("1 · What Cairnfield found")

        Repeater {
            model: review.viewModel.found
            delegate: DetailRow {
                required property var modelData

                Layout.fillWidth: true
                label: modelData.label
                value: modelData.value
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.leftMargin: -Theme.spaceTiny
            spacing: Theme.spaceTiny

            Repeater {
                model: review.viewModel.lists
                delegate: FoldedList {
                    required property ReviewListModel modelData

                    Layout.fillWidth: true
                    list: modelData
                }
            }
        }
    }
    PreservedSection {
        Layout.fillWidth: true
        viewModel: review.viewModel
    }
    ReviewSection {
        Layout.fillWidth: true
        title: qsTr("3 · What disappears")

        InfoText {
            Layout.fillWidth: true
            text: qsTr("Cairnfield removes the worktree with `git worktree remove` — never a forced delete.")
        }
        SymbolLabel {
            Layout.fillWidth: true
            text: review.viewModel.worktreePath
            symbolName: "folder.badge.minus"
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.iconSize + Theme.spaceSmall
            spacing: Theme.spaceTiny

            Repeater {
                model: review.viewModel.rebuildableLines
                delegate: InfoText {
                    required property string modelData

                    Layout.fillWidth: true
                    text: modelData
                    color: Theme.textSecondary
                    wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                }
            }
        }
        SymbolLabel {
            Layout.fillWidth: true
            text: review.going.statement
            symbolName: "exclamationmark.triangle"
            tint: Theme.orange
            visible: text !== ""
        }
        LineList {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.iconSize + Theme.spaceSmall
            title: review.going.statement
            model: review.going.lines
            ink: Theme.textSecondary
            visible: title !== ""
        }
    }
}
