import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Worktrees

// The list with its search field, and how far measuring has come.
Rectangle {
    id: pane

    required property WorktreesViewModel viewModel

    function focusSearch() {
        search.forceActiveFocus(Qt.ShortcutFocusReason);
        search.selectAll();
    }

    function takeKeyboard() {
        list.forceActiveFocus(Qt.OtherFocusReason);
        list.showSelection();
    }

    color: Theme.surface

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        SearchField {
            id: search

            Layout.fillWidth: true
            Layout.margins: Theme.spaceMedium
            Layout.bottomMargin: Theme.spaceSmall
            prompt: qsTr("Repository, branch, or path")
            text: pane.viewModel.searchText
            onTextEdited: pane.viewModel.searchText = text
            onTextChanged: if (text === "") pane.viewModel.searchText = ""
            Keys.onDownPressed: list.takeKeyboard()
        }
        ProgressLine {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.spaceMedium
            Layout.rightMargin: Theme.spaceMedium
            Layout.bottomMargin: Theme.spaceSmall
            title: pane.viewModel.progressText
            value: pane.viewModel.progressFraction
            visible: title !== ""
        }
        SymbolLabel {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.spaceMedium
            Layout.rightMargin: Theme.spaceMedium
            Layout.bottomMargin: Theme.spaceSmall
            text: pane.viewModel.notice
            symbolName: "exclamationmark.triangle"
            tint: Theme.orange
            visible: text !== ""
        }
        WorktreeList {
            id: list

            Layout.fillWidth: true
            Layout.fillHeight: true
            viewModel: pane.viewModel
        }
    }
}
