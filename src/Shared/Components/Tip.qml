import QtQuick
import QtQuick.Templates as T

// A tooltip over its parent, of plain text. Made when it is first shown, so that a long list costs nothing.
Item {
    id: tip

    required property string text
    required property bool shown

    anchors.fill: parent
    Accessible.ignored: true

    Loader {
        anchors.fill: parent
        active: tip.shown && tip.text !== ""
        // qmllint disable unqualified
        sourceComponent: Item {
            T.ToolTip {
                id: popup

                visible: true
                delay: Theme.tipDelay
                margins: Theme.spaceSmall
                x: parent ? (parent.width - width) / 2 : 0
                y: parent ? parent.height + Theme.spaceTiny : 0
                implicitWidth: Math.min(implicitContentWidth + leftPadding + rightPadding, Theme.tipWidth)
                implicitHeight: contentHeight + topPadding + bottomPadding
                horizontalPadding: Theme.spaceSmall
                verticalPadding: Theme.spaceTiny
                contentHeight: contentItem.implicitHeight
                closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent
                contentItem: Text {
                    text: tip.text // not bound to this file: 6.4 cannot load a bound component
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    font: Theme.captionFont
                    color: Theme.text
                }
                background: Rectangle {
                    color: Theme.surfaceRaised
                    radius: Theme.controlRadius
                    border.color: Theme.controlBorder
                    border.width: Theme.hairline
                }
            }
        }
        // qmllint enable unqualified
    }
}
