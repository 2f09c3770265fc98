import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

// A setting that is on or off. It shows `isOn` and nothing else: `turned` tells what the person wants, and whoever owns the
// setting decides.
T.CheckBox {
    id: row

    required property string label
    required property bool isOn

    signal turned(isOn: bool)

    Layout.fillWidth: true
    implicitWidth: implicitContentWidth
    implicitHeight: Math.max(Theme.controlHeight, implicitContentHeight)
    focusPolicy: Qt.StrongFocus
    opacity: enabled ? 1 : Theme.disabledOpacity
    checkState: isOn ? Qt.Checked : Qt.Unchecked
    nextCheckState: () => checkState
    onClicked: turned(!isOn)
    Accessible.name: label
    Accessible.checked: isOn // 6.4 tells of the state at the start alone
    Accessible.focusable: enabled
    Accessible.onPressAction: if (row.enabled) row.clicked()
    Accessible.onToggleAction: if (row.enabled) row.clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: RowLayout {
        spacing: Theme.spaceLarge

        Text {
            Layout.fillWidth: true
            text: row.label
            textFormat: Text.PlainText
            font: Theme.bodyFont
            color: Theme.text
            wrapMode: Text.Wrap
        }
        Rectangle {
            implicitWidth: Theme.switchWidth
            implicitHeight: Theme.switchHeight
            radius: height / 2
            color: row.isOn ? Theme.accent : Theme.track
            border.color: row.isOn ? Theme.accent : Theme.controlBorder
            border.width: Theme.hairline

            Rectangle {
                x: row.isOn ? parent.width - width - Theme.spaceHair - 1 : Theme.spaceHair + 1
                anchors.verticalCenter: parent.verticalCenter
                width: height
                height: parent.height - 2 * Theme.spaceHair - 2
                radius: height / 2
                color: row.isOn ? Theme.textOnAccent : Theme.textSecondary

                Behavior on x {
                    NumberAnimation {
                        duration: Theme.duration
                        easing.type: Easing.OutCubic
                    }
                }
            }
            Rectangle {
                anchors.fill: parent
                radius: parent.radius
                color: row.down ? Theme.pressed : Theme.hover
                visible: row.enabled && (row.down || row.hovered)
            }
            FocusRing {
                radius: height / 2
                shown: row.visualFocus
            }
        }
    }
}
