import QtQuick
import Cairnfield.Components
import Cairnfield.ItemLists

// A list of records. The selection is kept outside; this leads the keys there and keeps the chosen row in view.
ListView {
    id: list

    required property RowSelection selection
    required property string title

    function chooseByPointer(row: int) {
        forceActiveFocus(Qt.MouseFocusReason);
        selection.select(row);
    }
    // At either end with the margin, which positioning a view leaves out.
    function showSelection() {
        if (selection.row < 0)
            return;
        positionViewAtIndex(selection.row, ListView.Contain);
        const top = originY - topMargin;
        if (selection.row === 0)
            contentY = top;
        else if (selection.row === count - 1)
            contentY = Math.max(top, originY + contentHeight + bottomMargin - height);
    }
    function readKey(event: var) {
        const page = Math.max(1, Math.floor(height / Math.max(1, contentHeight / Math.max(1, count))) - 1);
        switch (event.key) {
        case Qt.Key_Up: selection.move(-1); break;
        case Qt.Key_Down: selection.move(1); break;
        case Qt.Key_PageUp: selection.move(-page); break;
        case Qt.Key_PageDown: selection.move(page); break;
        case Qt.Key_Home: selection.selectFirst(); break;
        case Qt.Key_End: selection.selectLast(); break;
        default:
            if (event.text.trim() === "" || (event.modifiers & ~Qt.ShiftModifier) !== Qt.NoModifier)
                return;
            selection.typeAhead(event.text);
        }
        event.accepted = true;
        showSelection();
    }

    clip: true
    currentIndex: -1  // 6.4 moves to what becomes current, wherever that stands already
    highlightFollowsCurrentItem: false
    keyNavigationEnabled: false
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: title
    Accessible.focusable: true
    Keys.onPressed: event => readKey(event)
    Component.onCompleted: showSelection()

    ThinScrollBar {
        view: list
    }
    FocusRing {
        anchors.margins: Theme.spaceTiny
        shown: list.activeFocus && list.selection.row < 0
    }
}
