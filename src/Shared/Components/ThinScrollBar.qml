import QtQuick
import QtQuick.Templates as T

// How far down a view is, at its trailing edge; wider under the pointer. Shown only where there is something to scroll.
T.ScrollBar {
    id: bar

    required property Flickable view

    parent: view
    anchors.top: parent.top
    anchors.bottom: parent.bottom
    anchors.right: parent.right
    orientation: Qt.Vertical
    policy: T.ScrollBar.AsNeeded
    minimumSize: 0.06
    padding: Theme.spaceHair
    implicitWidth: Theme.scrollBarWidth
    visible: size < 1
    position: view.visibleArea.yPosition
    size: view.visibleArea.heightRatio
    onPositionChanged: if (pressed) view.contentY = view.originY + position * view.contentHeight
    Accessible.ignored: true

    contentItem: Item {
        Rectangle {
            anchors.right: parent.right
            width: bar.hovered || bar.pressed ? 6 : 4
            height: parent.height
            radius: width / 2
            color: Theme.textSecondary
            opacity: bar.pressed ? 0.8 : bar.hovered ? 0.6 : 0.35
        }
    }
}
