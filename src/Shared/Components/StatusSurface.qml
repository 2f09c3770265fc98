import QtQuick
import QtQuick.Templates as T

// A card: a rounded panel round its content, always opaque.
T.Pane {
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: Theme.cardPadding
    background: Rectangle {
        color: Theme.surface
        radius: Theme.cardRadius
        border.color: Theme.border
        border.width: Theme.hairline
    }
}
