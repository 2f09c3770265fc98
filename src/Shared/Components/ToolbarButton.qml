import QtQuick
import QtQuick.Templates as T

// A quiet button of a toolbar. With `display: ToolbarButton.IconOnly` the title is its tooltip.
PlainButton {
    id: control

    required property string title

    text: title
    fill: "transparent"
    edge: "transparent"
    horizontalPadding: Theme.spaceSmall
    Accessible.name: title
    help: display === T.AbstractButton.IconOnly ? title : ""
}
