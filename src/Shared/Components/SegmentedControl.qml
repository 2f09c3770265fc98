pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T

// A choice of a few, all in view. `activated` tells of the person's choice only; arrow keys move it.
FocusScope {
    id: control

    required property string title
    required property list<string> options
    property int currentIndex: 0
    property string help

    signal activated(index: int)

    implicitWidth: row.implicitWidth + 4
    implicitHeight: Theme.controlHeight
    Accessible.role: Accessible.Grouping
    Accessible.name: title
    Accessible.description: help

    function choose(index: int) {
        if (index < 0 || index >= options.length)
            return;
        segments.itemAt(index).forceActiveFocus(Qt.TabFocusReason);
        if (index !== currentIndex)
            activated(index);
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.controlRadius
        color: Theme.track
        border.color: Theme.controlBorder
        border.width: Theme.highContrast ? Theme.hairline : 0
    }
    Row {
        id: row

        x: 2
        y: 2

        Repeater {
            id: segments

            model: control.options
            delegate: T.RadioButton {
                id: segment

                required property string modelData
                required property int index

                text: modelData
                checked: index === control.currentIndex
                focus: checked
                focusPolicy: checked ? Qt.StrongFocus : Qt.ClickFocus
                font: Theme.bodyFont
                implicitWidth: implicitContentWidth + 2 * Theme.spaceMedium
                implicitHeight: control.height - 4
                Accessible.name: text
                Accessible.onPressAction: control.choose(index)
                onClicked: control.choose(index)
                Keys.onLeftPressed: control.choose(index - 1)
                Keys.onRightPressed: control.choose(index + 1)

                contentItem: Text {
                    text: segment.text
                    textFormat: Text.PlainText
                    font: segment.font
                    color: Theme.text
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                }
                background: Rectangle {
                    radius: Theme.controlRadius - 2
                    color: segment.checked ? (Theme.dark ? Theme.controlBorder : Theme.surface)
                                           : segment.hovered ? Theme.hover : "transparent"
                    border.color: Theme.controlBorder
                    border.width: segment.checked && !Theme.dark ? Theme.hairline : 0

                    FocusRing {
                        shown: segment.visualFocus
                    }
                }
                Tip {
                    text: control.help
                    shown: segment.hovered
                }
            }
        }
    }
}
