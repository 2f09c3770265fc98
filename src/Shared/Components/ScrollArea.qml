import QtQuick

// A view that scrolls down, with its bar. It keeps what has the keyboard in view: call `show` with it.
Flickable {
    id: area

    property int margin: Theme.spaceSmall

    function show(item: Item) {
        for (let above = item; above !== contentItem; above = above.parent)
            if (!above)
                return;
        const top = item.mapToItem(contentItem, 0, 0).y - margin;
        const bottom = top + item.height + 2 * margin;
        if (top < contentY)
            contentY = Math.max(0, top);
        else if (bottom > contentY + height)
            contentY = Math.max(0, Math.min(contentHeight, bottom) - height);
    }
    function scroll(distance: real) {
        contentY = Math.max(0, Math.min(contentHeight - height, contentY + distance));
    }

    contentWidth: width
    boundsBehavior: Flickable.StopAtBounds
    clip: contentHeight > height
    onContentHeightChanged: contentY = Math.max(0, Math.min(contentY, contentHeight - height))

    ThinScrollBar {
        view: area
    }
}
