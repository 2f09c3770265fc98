import QtQuick
import QtQuick.Layouts

// A number that goes up and down in steps, told by the sentence that it stands in. Up and down, or plus and minus, step it;
// assistive technology reads the number beside the sentence. Whoever owns the number decides what a step is.
FocusScope {
    id: row

    required property string label
    required property bool canIncrease
    required property bool canDecrease
    // For assistive technology, which looks for these names.
    required property real value
    required property real minimumValue
    required property real maximumValue
    required property real stepSize

    signal increased
    signal decreased

    Layout.fillWidth: true
    implicitWidth: content.implicitWidth
    implicitHeight: content.implicitHeight
    activeFocusOnTab: true
    Accessible.role: Accessible.SpinBox
    Accessible.name: label
    Accessible.focusable: true
    Accessible.onIncreaseAction: up()
    Accessible.onDecreaseAction: down()
    Keys.onUpPressed: up()
    Keys.onDownPressed: down()
    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_Plus || event.key === Qt.Key_Minus;
        if (event.key === Qt.Key_Plus)
            up();
        else if (event.key === Qt.Key_Minus)
            down();
    }

    function up() {
        if (canIncrease)
            increased();
    }
    function down() {
        if (canDecrease)
            decreased();
    }

    RowLayout {
        id: content

        anchors.fill: parent
        spacing: Theme.spaceLarge

        InfoText {
            Layout.fillWidth: true
            Layout.minimumHeight: Theme.controlHeight
            text: row.label
            verticalAlignment: Text.AlignVCenter
            Accessible.ignored: true
        }
        Rectangle {
            implicitWidth: buttons.implicitWidth
            implicitHeight: Theme.controlHeight
            radius: Theme.controlRadius
            color: Theme.surface
            border.color: Theme.controlBorder
            border.width: Theme.hairline

            Row {
                id: buttons

                StepButton {
                    symbolName: "minus"
                    title: qsTr("Decrease")
                    subject: row.label
                    enabled: row.canDecrease
                    onClicked: row.down()
                }
                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: Theme.hairline
                    height: parent.height / 2
                    color: Theme.border
                }
                StepButton {
                    symbolName: "plus"
                    title: qsTr("Increase")
                    subject: row.label
                    enabled: row.canIncrease
                    onClicked: row.up()
                }
            }
            FocusRing {
                shown: row.activeFocus
            }
        }
    }
}
