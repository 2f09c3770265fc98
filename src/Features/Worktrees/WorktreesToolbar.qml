import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Cairnfield.Components
import Cairnfield.Worktrees

// How the list is grouped and filtered, and what can be asked for anew.
RowLayout {
    id: bar

    required property WorktreesViewModel viewModel
    property bool compact: false

    spacing: Theme.spaceSmall

    SegmentedControl {
        title: qsTr("Group by")
        options: bar.viewModel.groupingTitles
        currentIndex: bar.viewModel.groupingIndex
        help: qsTr("Group worktrees by project or by cleanup safety")
        onActivated: index => bar.viewModel.groupingIndex = index
    }
    MenuPicker {
        title: qsTr("Filter")
        model: bar.viewModel.filterTitles
        currentIndex: bar.viewModel.filterIndex
        onActivated: index => bar.viewModel.filterIndex = index
    }
    ToolbarButton {
        title: qsTr("Check pull requests")
        symbolName: "cloud"
        help: qsTr("Ask the GitHub CLI about pull requests for these branches")
        display: bar.compact ? T.AbstractButton.IconOnly : T.AbstractButton.TextBesideIcon
        enabled: bar.viewModel.canCheckPullRequests
        onClicked: bar.viewModel.checkPullRequests()
    }
    ToolbarButton {
        title: qsTr("Scan")
        symbolName: "arrow.clockwise"
        display: bar.compact ? T.AbstractButton.IconOnly : T.AbstractButton.TextBesideIcon
        enabled: bar.viewModel.canScan
        onClicked: bar.viewModel.scan()
    }
}
