import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

// A button with a title and, when given, a symbol. `help` is its tooltip.
T.Button {
    id: control

    property string symbolName
    property string help
    property color ink: Theme.text
    property color fill: Theme.surface
    property color edge: Theme.controlBorder

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    horizontalPadding: Theme.spaceMedium
    spacing: Theme.spaceSmall
    font: Theme.bodyFont
    opacity: enabled ? 1 : Theme.disabledOpacity
    Accessible.name: text
    // Qt 6.4 tells assistive technology nothing of a control that is disabled.
    Accessible.description: enabled ? help : qsTr("Not available now")
    Accessible.focusable: enabled
    Accessible.onPressAction: if (control.enabled) control.clicked()
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()

    contentItem: RowLayout {
        spacing: control.spacing

        SymbolIcon {
            Layout.alignment: Qt.AlignVCenter | Qt.AlignRight
            Layout.fillWidth: control.display !== T.AbstractButton.IconOnly
            symbolName: control.symbolName
            color: control.ink
            fillMode: Image.PreserveAspectFit
            horizontalAlignment: Image.AlignRight
            visible: control.symbolName !== ""
        }
        Text {
            Layout.fillWidth: true
            text: control.text
            textFormat: Text.PlainText
            font: control.font
            color: control.ink
            elide: Text.ElideRight
            horizontalAlignment: control.symbolName === "" ? Text.AlignHCenter : Text.AlignLeft
            verticalAlignment: Text.AlignVCenter
            visible: control.display !== T.AbstractButton.IconOnly
        }
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: control.fill
        border.color: control.edge
        border.width: Theme.hairline

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: control.down ? Theme.pressed : Theme.hover
            visible: control.enabled && (control.down || control.hovered)
        }
        FocusRing {
            shown: control.visualFocus
        }
    }

    Tip {
        text: control.help
        shown: control.hovered || control.visualFocus
    }
}
