import QtQuick

// The line between list and detail. It starts at a third of the width and can be dragged, or moved with the arrow keys while
// it has the keyboard; a double click puts it back.
Item {
    id: divider

    required property real total
    property real share: 1 / 3
    readonly property real least: Theme.listMinimumWidth
    readonly property real most: Math.max(least, total - Theme.listMinimumWidth)
    readonly property real position: Math.round(Math.min(most, Math.max(least, total * share)))

    function moveTo(place: real) {
        share = Math.min(most, Math.max(least, place)) / total;
    }

    x: position
    width: Theme.hairline
    activeFocusOnTab: true
    Accessible.role: Accessible.Separator
    Accessible.name: qsTr("Width of the list")
    Accessible.focusable: true
    Keys.onLeftPressed: moveTo(position - Theme.pageMargin)
    Keys.onRightPressed: moveTo(position + Theme.pageMargin)

    Rectangle {
        anchors.centerIn: parent
        width: divider.activeFocus ? Theme.focusRingWidth + 1 : Theme.hairline
        height: parent.height
        color: divider.activeFocus || handle.containsMouse || handle.pressed ? Theme.accent : Theme.border
    }
    MouseArea {
        id: handle

        anchors.fill: parent
        anchors.margins: -Theme.spaceTiny
        anchors.topMargin: 0
        anchors.bottomMargin: 0
        hoverEnabled: true
        preventStealing: true
        cursorShape: Qt.SplitHCursor
        onPositionChanged: mouse => {
            if (pressed)
                divider.moveTo(mapToItem(divider.parent, mouse.x, 0).x);
        }
        onDoubleClicked: divider.share = 1 / 3
    }
}
