import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

// A sheet over the window: a title, its content, which scrolls when there is too little room, and a footer that is always in
// view. Escape closes it while `canClose`; Enter is `accepted` unless a control takes it.
T.Popup {
    id: sheet

    required property string title
    property bool canClose: true
    default property alias content: body.data
    property alias footer: buttons.data

    signal accepted

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
        anchors.fill: parent
        focus: true
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title
        Keys.onReturnPressed: sheet.accepted()
        Keys.onEnterPressed: sheet.accepted()

        InfoText {
            id: heading

            width: parent.width
            text: sheet.title
            font: Theme.headlineFont
            Accessible.role: Accessible.Heading
        }
        Flickable {
            id: area

            anchors.top: heading.bottom
            anchors.bottom: buttons.top
            anchors.topMargin: Theme.spaceLarge
            anchors.bottomMargin: Theme.spaceLarge
            width: parent.width
            contentHeight: body.implicitHeight
            boundsBehavior: Flickable.StopAtBounds
            clip: contentHeight > height

            ColumnLayout {
                id: body

                width: area.width
                spacing: Theme.spaceSmall
            }
            ThinScrollBar {
                view: area
            }
        }
        RowLayout {
            id: buttons

            anchors.right: parent.right
            anchors.bottom: parent.bottom
            spacing: Theme.spaceSmall
        }
    }
}
