import QtQuick

// A path on one line, shortened in the middle; the whole of it is the tooltip and what assistive technology reads.
InfoText {
    id: line

    required property string path

    text: path
    font: Theme.captionFont
    color: Theme.textSecondary
    wrapMode: Text.NoWrap
    elide: Text.ElideMiddle

    HoverHandler {
        id: pointer
    }
    Tip {
        text: line.path
        shown: pointer.hovered && line.truncated
    }
}
