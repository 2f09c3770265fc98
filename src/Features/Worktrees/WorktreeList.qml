import QtQuick
import Cairnfield.Components
import Cairnfield.Worktrees

// The rows. The view model holds the selection; this shows it and leads the keys there.
ListView {
    id: list

    required property WorktreesViewModel viewModel
    readonly property int rowHeight: Math.ceil(body.height + 2 * caption.height + 2 * Theme.rowPadding + Theme.spaceTiny)

    function takeKeyboard() {
        forceActiveFocus(Qt.TabFocusReason);
        if (viewModel.selectedRow < 0)
            viewModel.selectFirst();
        showSelection();
    }
    function showSelection() {
        if (viewModel.selectedRow === 1)
            positionViewAtBeginning();
        else if (viewModel.selectedRow >= 0)
            positionViewAtIndex(viewModel.selectedRow, ListView.Contain);
    }
    function readKey(event: var) {
        const page = Math.max(1, Math.floor(height / rowHeight) - 1);
        switch (event.key) {
        case Qt.Key_Up: viewModel.moveSelection(-1); break;
        case Qt.Key_Down: viewModel.moveSelection(1); break;
        case Qt.Key_PageUp: viewModel.moveSelection(-page); break;
        case Qt.Key_PageDown: viewModel.moveSelection(page); break;
        case Qt.Key_Home: viewModel.selectFirst(); break;
        case Qt.Key_End: viewModel.selectLast(); break;
        default:
            if (event.text.trim() === "" || (event.modifiers & ~Qt.ShiftModifier) !== Qt.NoModifier)
                return;
            viewModel.typeAhead(event.text);
        }
        event.accepted = true;
        showSelection();
    }

    clip: true
    model: viewModel.rows
    currentIndex: -1
    highlightFollowsCurrentItem: false
    keyNavigationEnabled: false
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: true
    cacheBuffer: 4 * rowHeight
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Worktrees")
    Accessible.focusable: true
    Keys.onPressed: event => readKey(event)

    Connections {
        target: list.viewModel

        function onSelectionChanged() {
            list.currentIndex = list.viewModel.selectedRow;
        }
        function onQueryChanged() {
            if (list.viewModel.selectedRow < 0)
                list.positionViewAtBeginning();
            list.showSelection();
        }
    }
    ThinScrollBar {
        view: list
    }
    FocusRing {
        anchors.margins: Theme.spaceTiny
        shown: list.activeFocus && list.viewModel.selectedRow < 0
    }
    FontMetrics {
        id: body
        font: Theme.bodyFont
    }
    FontMetrics {
        id: caption
        font: Theme.captionFont
    }

    // Not bound to this file: 6.4 cannot load a bound component.
    // qmllint disable unqualified
    delegate: Loader {
        id: entry

        required property int index
        required property worktreeListItem item
        readonly property bool selected: list.viewModel.selectedRow === index

        width: ListView.view.width
        sourceComponent: item.isHeader ? header : row

        Component {
            id: header

            ProjectSectionHeader {
                project: entry.item
            }
        }
        Component {
            id: row

            WorktreeRow {
                worktree: entry.item
                selected: entry.selected
                listHasFocus: list.activeFocus
                implicitHeight: list.rowHeight
                onChosen: {
                    list.forceActiveFocus(Qt.MouseFocusReason);
                    list.viewModel.select(entry.index);
                }
            }
        }
    }
    // qmllint enable unqualified
}
