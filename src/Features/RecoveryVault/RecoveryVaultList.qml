pragma ComponentBehavior: Bound
import QtQuick
import Cairnfield.Components
import Cairnfield.ItemLists
import Cairnfield.RecoveryVault

// The kept files, in the order in which they were archived.
ItemList {
    id: list

    required property RecoveryVaultViewModel viewModel

    title: qsTr("Recovery")
    model: viewModel.rows
    selection: viewModel.selection
    topMargin: Theme.pageMargin
    bottomMargin: Theme.pageMargin
    spacing: Theme.spaceMedium
    Keys.onDeletePressed: viewModel.deletePermanently(selection.row)

    delegate: RecoveryVaultRow {
        required property int index
        required property vaultListItem item

        x: Theme.pageMargin
        width: ListView.view.width - 2 * Theme.pageMargin
        file: item
        selected: list.selection.row === index
        listHasFocus: list.activeFocus
        onChosen: list.chooseByPointer(index)
        onReveal: list.viewModel.reveal(index)
        onRestore: list.viewModel.restore(index)
        onDeletePermanently: list.viewModel.deletePermanently(index)
    }
}
