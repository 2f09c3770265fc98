pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T

// A choice of several in a menu. `activated` tells of the person's choice. The title names it for assistive technology and
// in the tooltip.
T.ComboBox {
    id: control

    required property string title
    readonly property real widestText: {
        let widest = 0;
        for (let i = 0; i < count; ++i)
            widest = Math.max(widest, metrics.advanceWidth(textAt(i)));
        return Math.ceil(widest);
    }

    implicitWidth: widestText + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.spaceMedium
    rightPadding: Theme.iconSize + 2 * Theme.spaceSmall
    font: Theme.bodyFont
    opacity: enabled ? 1 : Theme.disabledOpacity
    Accessible.name: title
    Accessible.description: displayText
    Accessible.onPressAction: popup.open()

    function choose(index: int) {
        popup.close();
        if (index === currentIndex)
            return;
        currentIndex = index;
        activated(index);
    }

    FontMetrics {
        id: metrics
        font: control.font
    }
    contentItem: Text {
        text: control.displayText
        textFormat: Text.PlainText
        font: control.font
        color: Theme.text
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }
    indicator: SymbolIcon {
        x: control.width - width - Theme.spaceSmall
        anchors.verticalCenter: parent.verticalCenter
        symbolName: "chevron.down"
        size: 14
        color: Theme.textSecondary
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.surface
        border.color: Theme.controlBorder
        border.width: Theme.hairline

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: control.pressed ? Theme.pressed : Theme.hover
            visible: control.hovered || control.pressed
        }
        FocusRing {
            shown: control.visualFocus
        }
    }
    delegate: T.ItemDelegate {
        id: entry

        required property string modelData
        required property int index

        width: ListView.view.width
        implicitHeight: Theme.controlHeight
        leftPadding: Theme.iconSize + 2 * Theme.spaceSmall
        rightPadding: Theme.spaceMedium
        text: modelData
        font: control.font
        highlighted: control.highlightedIndex === index
        Accessible.name: text
        Accessible.checked: control.currentIndex === index
        Accessible.onPressAction: control.choose(index)
        contentItem: Text {
            text: entry.text
            textFormat: Text.PlainText
            font: entry.font
            color: Theme.text
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            radius: Theme.controlRadius - 2
            color: entry.highlighted ? Theme.selection : "transparent"

            SymbolIcon {
                x: Theme.spaceSmall
                anchors.verticalCenter: parent.verticalCenter
                symbolName: "checkmark"
                size: 14
                visible: control.currentIndex === entry.index
            }
        }
    }
    popup: T.Popup {
        y: control.height + Theme.spaceTiny
        width: Math.max(control.width, 180)
        implicitHeight: contentHeight + topPadding + bottomPadding
        padding: Theme.spaceTiny
        margins: Theme.spaceSmall
        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: control.popup.visible ? control.delegateModel : null
            currentIndex: control.highlightedIndex
            highlightMoveDuration: 0
            Accessible.role: Accessible.PopupMenu
            Accessible.name: control.title
        }
        background: Rectangle {
            color: Theme.surfaceRaised
            radius: Theme.controlRadius + 2
            border.color: Theme.controlBorder
            border.width: Theme.hairline
        }
    }

    Tip {
        text: control.title
        shown: control.hovered && !control.popup.visible
    }
}
