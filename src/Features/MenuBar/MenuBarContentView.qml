pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.MenuBar

// The volume's state, what could be done about it, and the actions. Its height follows what it shows.
FocusScope {
    id: view

    required property MenuBarViewModel viewModel

    implicitHeight: content.implicitHeight
    focus: true
    Keys.onDownPressed: Window.activeFocusItem.nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onUpPressed: Window.activeFocusItem.nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    component Divider: Rectangle {
        Layout.fillWidth: true
        implicitHeight: Theme.hairline
        color: Theme.controlBorder
    }

    ColumnLayout {
        id: content

        anchors.left: parent.left
        anchors.right: parent.right
        spacing: 0

        ColumnLayout {
            Layout.fillWidth: true
            Layout.margins: Theme.spaceLarge
            spacing: Theme.spaceHair

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.spaceMedium

                InfoText {
                    Layout.fillWidth: true
                    text: view.viewModel.availableText
                    font: Theme.heroFont
                    fontSizeMode: Text.HorizontalFit
                    wrapMode: Text.NoWrap
                }
                StatusBadge {
                    title: view.viewModel.levelText
                    symbolName: view.viewModel.levelSymbolName
                    tint: Theme.tint(view.viewModel.levelTint)
                }
            }
            InfoText {
                Layout.fillWidth: true
                text: view.viewModel.totalText
                color: Theme.textSecondary
            }
            FileNotice {
                Layout.topMargin: Theme.spaceSmall
                text: view.viewModel.fileNotice
            }
        }
        Divider {}
        ColumnLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.spaceLarge
            Layout.rightMargin: Theme.spaceLarge
            Layout.topMargin: Theme.spaceMedium
            Layout.bottomMargin: Theme.spaceMedium
            spacing: Theme.spaceSmall

            DetailRow {
                Layout.fillWidth: true
                label: qsTr("Looks reclaimable")
                value: view.viewModel.reclaimableText
            }
            DetailRow {
                Layout.fillWidth: true
                label: qsTr("Need attention")
                value: view.viewModel.attentionText
            }
            DetailRow {
                Layout.fillWidth: true
                label: view.viewModel.folderName
                value: view.viewModel.folderSizeText
                elidesLabel: true
                visible: view.viewModel.showsFolder
            }
        }
        Repeater {
            model: view.viewModel.actions

            delegate: ColumnLayout {
                id: action

                required property int index
                required property string title
                required property string symbolName
                required property bool startsGroup

                Layout.fillWidth: true
                spacing: 0

                Divider {
                    Layout.bottomMargin: Theme.spaceTiny
                    visible: action.startsGroup
                }
                MenuBarActionRow {
                    Layout.fillWidth: true
                    Layout.leftMargin: Theme.spaceSmall
                    Layout.rightMargin: Theme.spaceSmall
                    text: action.title
                    symbolName: action.symbolName
                    focus: action.index === 0
                    onClicked: view.viewModel.perform(action.index)
                }
                Item {
                    implicitHeight: Theme.spaceTiny
                }
            }
        }
    }
}
