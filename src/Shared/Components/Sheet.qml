import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

// A sheet over the window: a title, its content, which scrolls when there is too little room, and a footer that is always in
// view. Escape closes it while `canClose`; Enter is `accepted` unless a control takes it; the arrow and page keys scroll.
T.Popup {
    id: sheet

    required property string title
    property string subtitle
    property bool canClose: true
    default property alias content: body.data
    property alias footer: buttons.data

    signal accepted

    // From the top again, with the keyboard before the first control.
    function beginAgain() {
        area.contentY = 0;
        beginning.forceActiveFocus(Qt.OtherFocusReason);
    }

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(Theme.sheetWidth, parent ? parent.width - 2 * Theme.pageMargin : Theme.sheetWidth)
    height: Math.min(implicitHeight, parent ? parent.height - 2 * Theme.pageMargin : implicitHeight)
    implicitHeight: heading.implicitHeight + body.implicitHeight + buttons.implicitHeight + 2 * Theme.spaceLarge
                    + topPadding + bottomPadding
    padding: Theme.pageMargin
    modal: true
    focus: true
    closePolicy: canClose ? T.Popup.CloseOnEscape : T.Popup.NoAutoClose

    T.Overlay.modal: Rectangle {
        color: Theme.dimmer
    }
    background: Rectangle {
        color: Theme.surface
        radius: Theme.cardRadius
        border.color: Theme.border
        border.width: Theme.hairline
    }

    FocusScope {
        id: scope

        readonly property Item focused: Window.activeFocusItem

        function accept(event: var) {
            if (!event.isAutoRepeat)
                sheet.accepted();
        }

        anchors.fill: parent
        focus: true
        onFocusedChanged: area.show(focused)
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title
        Accessible.description: sheet.subtitle
        // A key that is held down opened the sheet or moved it on: it does not answer what comes up next.
        Keys.onReturnPressed: event => scope.accept(event)
        Keys.onEnterPressed: event => scope.accept(event)
        Keys.onPressed: event => {
            switch (event.key) {
            case Qt.Key_Up: area.scroll(-2 * Theme.controlHeight); break;
            case Qt.Key_Down: area.scroll(2 * Theme.controlHeight); break;
            case Qt.Key_PageUp: area.scroll(-0.9 * area.height); break;
            case Qt.Key_PageDown: area.scroll(0.9 * area.height); break;
            case Qt.Key_Home: area.scroll(-area.contentHeight); break;
            case Qt.Key_End: area.scroll(area.contentHeight); break;
            default: return;
            }
            event.accepted = true;
        }

        Item {
            id: beginning

            focus: true
        }
        ColumnLayout {
            id: heading

            width: parent.width
            spacing: Theme.spaceHair

            InfoText {
                Layout.fillWidth: true
                text: sheet.title
                font: Theme.headlineFont
                Accessible.role: Accessible.Heading
            }
            InfoText {
                id: line

                Layout.fillWidth: true
                text: sheet.subtitle
                color: Theme.textSecondary
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                maximumLineCount: 2
                elide: Text.ElideRight
                visible: text !== ""

                HoverHandler {
                    id: pointer
                }
                Tip {
                    text: sheet.subtitle
                    shown: pointer.hovered && line.truncated
                }
            }
        }
        ScrollArea {
            id: area

            anchors.top: heading.bottom
            anchors.bottom: buttons.top
            anchors.topMargin: Theme.spaceLarge
            anchors.bottomMargin: Theme.spaceLarge
            // The bar stands beside the content.
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.rightMargin: Theme.spaceMedium - Theme.pageMargin
            contentHeight: body.implicitHeight

            ColumnLayout {
                id: body

                width: scope.width
                spacing: Theme.spaceSmall
            }
        }
        // There is more above, and there is more below.
        Rectangle {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: area.top
            height: Theme.hairline
            color: Theme.border
            visible: !area.atYBeginning
        }
        Rectangle {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: area.bottom
            height: Theme.hairline
            color: Theme.border
            visible: !area.atYEnd
        }
        RowLayout {
            id: buttons

            anchors.right: parent.right
            anchors.bottom: parent.bottom
            width: Math.min(implicitWidth, parent.width)
            spacing: Theme.spaceSmall
        }
    }
}
