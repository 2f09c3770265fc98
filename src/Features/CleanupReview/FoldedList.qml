import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Cairnfield.CleanupReview
import Cairnfield.Components

// A list of which only the head is there until it is asked for.
ColumnLayout {
    id: folded

    required property ReviewListModel list

    spacing: Theme.spaceTiny
    visible: list.count > 0

    T.Button {
        id: head

        implicitWidth: implicitContentWidth + leftPadding + rightPadding
        implicitHeight: Math.max(Theme.iconSizeLarge, implicitContentHeight)
        text: folded.list.title
        Accessible.name: text
        Accessible.description: folded.list.foldedText
        Accessible.onPressAction: head.clicked()
        onClicked: folded.list.isUnfolded = !folded.list.isUnfolded
        Keys.onReturnPressed: clicked()
        Keys.onEnterPressed: clicked()

        contentItem: RowLayout {
            spacing: Theme.spaceTiny

            SymbolIcon {
                symbolName: folded.list.isUnfolded ? "chevron.down" : "chevron.right"
                color: Theme.textSecondary
            }
            Text {
                Layout.fillWidth: true
                text: head.text
                textFormat: Text.PlainText
                font: Theme.bodyFont
                color: Theme.text
            }
        }
        background: Rectangle {
            radius: Theme.controlRadius
            color: head.down ? Theme.pressed : head.hovered ? Theme.hover : "transparent"

            FocusRing {
                shown: head.visualFocus
            }
        }
    }
    // The rows of thousands of files are not even counted before somebody wants to see them.
    Loader {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.iconSize + Theme.spaceTiny
        active: folded.list.isUnfolded
        visible: active
        sourceComponent: LineList {
            title: folded.list.title
            model: folded.list
            ink: Theme.textSecondary
        }
    }
}
