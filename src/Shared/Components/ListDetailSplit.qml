import QtQuick

// A list on a surface of its own beside the detail of what is chosen in it; the line between them can be moved.
Item {
    id: split

    property alias list: listPlace.data
    default property alias detail: detailPlace.data

    Rectangle {
        id: listPlace

        anchors.left: parent.left
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: divider.position
        color: Theme.surface
    }
    SplitDivider {
        id: divider

        anchors.top: parent.top
        anchors.bottom: parent.bottom
        total: split.width
    }
    Item {
        id: detailPlace

        anchors.left: divider.right
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
    }
}
