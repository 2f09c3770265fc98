import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Cairnfield.Components

// Over everything, sheets too, while the program waits for a cleanup before it ends.
T.Popup {
    id: notice

    required property bool isShown
    readonly property string text: qsTr("Cairnfield quits as soon as the cleanup is finished.")

    parent: T.Overlay.overlay
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? parent.height - height - Theme.pageMargin : 0
    z: 1
    implicitWidth: row.implicitWidth + 2 * padding
    implicitHeight: row.implicitHeight + 2 * padding
    padding: Theme.spaceLarge
    closePolicy: T.Popup.NoAutoClose
    visible: isShown

    background: Rectangle {
        color: Theme.surfaceRaised
        radius: Theme.cardRadius
        border.color: Theme.border
        border.width: Theme.hairline
    }

    RowLayout {
        id: row

        spacing: Theme.spaceSmall
        Accessible.role: Accessible.AlertMessage
        Accessible.name: notice.text

        SymbolIcon {
            symbolName: "clock.arrow.circlepath"
            color: Theme.accent
        }
        InfoText {
            text: notice.text
        }
    }
}
