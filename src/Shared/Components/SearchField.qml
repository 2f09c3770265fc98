import QtQuick
import QtQuick.Templates as T

// A field to search in: Escape or the cross empties it.
T.TextField {
    id: field

    required property string prompt

    implicitWidth: Theme.searchMinimumWidth
    implicitHeight: Theme.controlHeight
    leftPadding: Theme.iconSize + 2 * Theme.spaceSmall
    rightPadding: leftPadding
    verticalAlignment: TextInput.AlignVCenter
    font: Theme.bodyFont
    color: Theme.text
    selectionColor: Theme.accent
    selectedTextColor: Theme.textOnAccent
    selectByMouse: true
    Accessible.name: prompt
    Accessible.searchEdit: true
    Keys.onEscapePressed: event => {
        event.accepted = field.text !== "";
        field.clear();
    }

    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.surface
        border.color: Theme.controlBorder
        border.width: Theme.hairline

        FocusRing {
            shown: field.activeFocus
        }
    }

    SymbolIcon {
        x: Theme.spaceSmall
        anchors.verticalCenter: parent.verticalCenter
        symbolName: "magnifyingglass"
        color: Theme.textSecondary
    }
    Text {
        anchors.fill: parent
        anchors.leftMargin: field.leftPadding
        anchors.rightMargin: field.rightPadding
        text: field.prompt
        textFormat: Text.PlainText
        font: field.font
        color: Theme.textSecondary
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        visible: field.text === "" && field.preeditText === ""
    }
    T.Button {
        id: clearButton

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: field.height
        height: field.height
        visible: field.text !== ""
        focusPolicy: Qt.NoFocus
        Accessible.name: qsTr("Clear search")
        Accessible.onPressAction: clearButton.clicked()
        onClicked: field.clear()
        contentItem: Item {
            SymbolIcon {
                anchors.centerIn: parent
                symbolName: "xmark"
                size: 12
                color: clearButton.hovered ? Theme.text : Theme.textSecondary
            }
        }
        HoverHandler {
            cursorShape: Qt.ArrowCursor
        }
    }
}
