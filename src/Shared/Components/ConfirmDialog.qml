import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

// A question before something happens. It only asks: `confirmed` is the answer yes, closing it in any other way is no. What
// destroys something is named so, and the keyboard then starts on Cancel.
T.Dialog {
    id: dialog

    required property string message
    required property string confirmTitle
    property string cancelTitle: qsTr("Cancel")
    property bool destructive: false

    signal confirmed

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(Theme.dialogWidth, parent ? parent.width - 2 * Theme.pageMargin : Theme.dialogWidth)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: Theme.pageMargin
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    onOpened: (destructive ? cancelButton : confirmButton).forceActiveFocus(Qt.TabFocusReason)

    function confirm() {
        confirmed();
        close();
    }

    T.Overlay.modal: Rectangle {
        color: Theme.dimmer
    }
    background: Rectangle {
        color: Theme.surface
        radius: Theme.cardRadius
        border.color: Theme.border
        border.width: Theme.hairline
    }

    ColumnLayout {
        width: parent.width
        spacing: Theme.spaceSmall
        Accessible.role: Accessible.Dialog
        Accessible.name: dialog.title

        InfoText {
            Layout.fillWidth: true
            text: dialog.title
            font: Theme.headlineFont
        }
        InfoText {
            Layout.fillWidth: true
            text: dialog.message
            color: Theme.textSecondary
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            Layout.topMargin: Theme.spaceLarge
            spacing: Theme.spaceSmall

            PlainButton {
                id: cancelButton

                text: dialog.cancelTitle
                onClicked: dialog.close()
            }
            PlainButton {
                id: confirmButton

                text: dialog.confirmTitle
                ink: dialog.destructive ? Theme.red : Theme.textOnAccent
                fill: dialog.destructive ? Theme.surface : Theme.accent
                edge: dialog.destructive ? Theme.red : Theme.accent
                onClicked: dialog.confirm()
            }
        }
    }
}
