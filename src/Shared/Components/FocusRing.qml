import QtQuick

// The ring round the control that the keyboard speaks to. A child of the control.
Rectangle {
    required property bool shown

    anchors.fill: parent
    anchors.margins: -Theme.focusRingWidth - 1
    radius: Theme.controlRadius + Theme.focusRingWidth
    color: "transparent"
    border.color: Theme.accent
    border.width: Theme.focusRingWidth
    visible: shown
}
