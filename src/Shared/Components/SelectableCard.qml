import QtQuick

// The card under a row of a list, which can be selected.
Rectangle {
    id: card

    required property bool selected
    required property bool listHasFocus

    signal tapped

    color: Theme.surface
    radius: Theme.cardRadius
    border.color: card.selected ? Theme.accent : Theme.border
    border.width: card.selected && card.listHasFocus ? Theme.focusRingWidth : Theme.hairline

    Rectangle {
        anchors.fill: parent
        radius: parent.radius
        color: card.selected ? (card.listHasFocus ? Theme.selection : Theme.selectionInactive)
                             : pointer.hovered ? Theme.hover : "transparent"
    }
    TapHandler {
        gesturePolicy: TapHandler.ReleaseWithinBounds
        onTapped: card.tapped()
    }
    HoverHandler {
        id: pointer
    }
}
