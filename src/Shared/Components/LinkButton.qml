import QtQuick
import QtQuick.Templates as T

// An action in the midst of text.
T.Button {
    id: control

    property color ink: Theme.accent

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    font: Theme.captionFont
    opacity: enabled ? 1 : Theme.disabledOpacity
    Accessible.name: text
    Accessible.onPressAction: if (control.enabled) control.clicked()
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()

    contentItem: Text {
        text: control.text
        textFormat: Text.PlainText
        font.family: control.font.family
        font.pointSize: control.font.pointSize
        font.underline: control.hovered || control.visualFocus
        color: control.ink
    }
    background: Item {
        FocusRing {
            shown: control.visualFocus
        }
    }
    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
}
