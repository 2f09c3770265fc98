import QtQuick
import QtQuick.Templates as T

// One half of a stepper. Held down, it goes on. The keyboard speaks to the stepper, not to it.
T.Button {
    id: control

    required property string symbolName
    required property string title
    required property string subject

    width: Theme.controlHeight
    height: Theme.controlHeight
    focusPolicy: Qt.NoFocus
    autoRepeat: true
    Accessible.name: title
    Accessible.description: enabled ? subject : qsTr("Not available now")
    Accessible.focusable: false
    Accessible.onPressAction: if (control.enabled) control.clicked()

    contentItem: Item {
        SymbolIcon {
            anchors.centerIn: parent
            symbolName: control.symbolName
            size: 14
            opacity: control.enabled ? 1 : Theme.disabledOpacity
        }
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: control.down ? Theme.pressed : Theme.hover
        visible: control.enabled && (control.down || control.hovered)
    }
}
