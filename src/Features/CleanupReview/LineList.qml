import QtQuick
import Cairnfield.Components

// Lines of text, as many as there are: it grows to a few rows and scrolls from there, by the arrow, page, Home and End keys once
// it has the keyboard. Only the rows in view are made. The model is a list of texts, or has them in the role "line".
ListView {
    id: list

    required property string title
    property color ink: Theme.text
    readonly property int longest: Math.ceil(9.5 * (metrics.height + spacing))
    readonly property bool scrolls: contentHeight > longest

    function readKey(event: var) {
        const page = 0.9 * height;
        switch (event.key) {
        case Qt.Key_Up: scroll(-metrics.height); break;
        case Qt.Key_Down: scroll(metrics.height); break;
        case Qt.Key_PageUp: scroll(-page); break;
        case Qt.Key_PageDown: scroll(page); break;
        case Qt.Key_Home: positionViewAtBeginning(); break;
        case Qt.Key_End: positionViewAtEnd(); break;
        default: return;
        }
        event.accepted = true;
    }
    function scroll(distance: real) {
        const last = originY + contentHeight - height;
        contentY = Math.max(originY, Math.min(last, contentY + distance));
    }

    implicitHeight: Math.min(contentHeight, longest)
    spacing: Theme.spaceHair
    clip: true
    currentIndex: -1
    highlightFollowsCurrentItem: false
    keyNavigationEnabled: false
    interactive: scrolls
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: scrolls
    Accessible.role: Accessible.List
    Accessible.name: title
    Accessible.focusable: scrolls
    Keys.enabled: scrolls
    Keys.onPressed: event => readKey(event)

    // Not bound to this file: 6.4 cannot load a bound component.
    // qmllint disable unqualified
    delegate: InfoText {
        id: line

        required property var model

        width: ListView.view.width - Theme.spaceMedium
        text: model.line ?? model.modelData
        color: list.ink
        wrapMode: Text.NoWrap
        elide: Text.ElideMiddle
        Accessible.role: Accessible.ListItem

        HoverHandler {
            id: pointer
        }
        Tip {
            text: line.text
            shown: pointer.hovered && line.truncated
        }
    }
    // qmllint enable unqualified

    ThinScrollBar {
        view: list
    }
    FocusRing {
        parent: list
        anchors.margins: 0
        shown: list.activeFocus
    }
    FontMetrics {
        id: metrics
        font: Theme.bodyFont
    }
}
