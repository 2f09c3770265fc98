pragma ComponentBehavior: Bound
import QtQuick
import Cairnfield.Components
import Cairnfield.History
import Cairnfield.ItemLists

// The attempts, newest first.
ItemList {
    id: list

    required property HistoryViewModel viewModel

    title: qsTr("History")
    model: viewModel.rows
    selection: viewModel.selection
    topMargin: Theme.spaceSmall
    bottomMargin: Theme.spaceSmall

    delegate: HistoryRow {
        required property int index
        required property historyListItem item

        width: ListView.view.width
        receipt: item
        selected: list.selection.row === index
        listHasFocus: list.activeFocus
        onChosen: list.chooseByPointer(index)
    }
}
