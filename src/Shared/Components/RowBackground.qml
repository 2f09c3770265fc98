import QtQuick

// What lies behind a row of a list: hover, selection (quieter while the keyboard is elsewhere) and the keyboard's place.
Rectangle {
    id: back

    property bool selected: false
    property bool hovered: false
    property bool listHasFocus: false
    property bool hasKeyboard: false

    radius: Theme.controlRadius
    color: selected ? (listHasFocus ? Theme.selection : Theme.selectionInactive) : hovered ? Theme.hover : "transparent"
    border.color: hasKeyboard ? Theme.accent : Theme.border
    border.width: hasKeyboard ? Theme.focusRingWidth : selected && Theme.highContrast ? Theme.hairline : 0
}
