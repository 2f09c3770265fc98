pragma ComponentBehavior: Bound
import QtQuick
import Cairnfield.Components
import Cairnfield.WatchedFolders

// The rows. The view model holds the selection; this shows it and leads the keys there.
ListView {
    id: list

    required property WatchedFoldersViewModel viewModel

    function showSelection() {
        if (viewModel.selectedRow >= 0)
            positionViewAtIndex(viewModel.selectedRow, ListView.Contain);
    }
    function readKey(event: var) {
        switch (event.key) {
        case Qt.Key_Up: viewModel.moveSelection(-1); break;
        case Qt.Key_Down: viewModel.moveSelection(1); break;
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
    currentIndex: -1  // 6.4 moves to what becomes current, wherever that stands already
    highlightFollowsCurrentItem: false
    keyNavigationEnabled: false
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: true
    topMargin: Theme.pageMargin
    bottomMargin: Theme.pageMargin
    spacing: Theme.spaceMedium
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Watched Folders")
    Accessible.focusable: true
    Keys.onPressed: event => readKey(event)

    ThinScrollBar {
        view: list
    }
    FocusRing {
        anchors.margins: Theme.spaceTiny
        shown: list.activeFocus && list.viewModel.selectedRow < 0
    }

    delegate: WatchedFolderRow {
        id: row

        required property int index
        required property watchedFolderListItem item

        x: Theme.pageMargin
        width: ListView.view.width - 2 * Theme.pageMargin
        folder: item
        selected: list.viewModel.selectedRow === index
        listHasFocus: list.activeFocus
        onChosen: {
            list.forceActiveFocus(Qt.MouseFocusReason);
            list.viewModel.select(index);
        }
        onReveal: list.viewModel.reveal(index)
        onRescan: list.viewModel.rescan(index)
    }
}
