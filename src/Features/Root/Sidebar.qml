pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Root

// The sections, and the storage status below them while space is low.
Rectangle {
    id: sidebar

    required property RootViewModel viewModel
    required property bool collapsed
    // The ring shows once the keyboard is used, not for a click and not when the window opens.
    property bool showsFocus: false

    color: Theme.sidebar

    function focusList() {
        list.forceActiveFocus(Qt.TabFocusReason);
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.spaceSmall
        anchors.topMargin: Theme.spaceMedium
        spacing: Theme.spaceSmall

        ListView {
            id: list

            Layout.fillWidth: true
            Layout.fillHeight: true
            model: sidebar.viewModel.sections
            currentIndex: sidebar.viewModel.selectedRow
            spacing: Theme.spaceHair
            clip: true
            focus: true
            activeFocusOnTab: true
            boundsBehavior: Flickable.StopAtBounds
            highlightFollowsCurrentItem: false
            keyNavigationEnabled: false
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Sections")
            onActiveFocusChanged: if (!activeFocus) sidebar.showsFocus = true
            Keys.onPressed: event => {
                sidebar.showsFocus = true;
                event.accepted = true;
                if (event.key === Qt.Key_Up)
                    sidebar.viewModel.select(list.currentIndex - 1);
                else if (event.key === Qt.Key_Down)
                    sidebar.viewModel.select(list.currentIndex + 1);
                else if (event.key === Qt.Key_Home)
                    sidebar.viewModel.select(0);
                else if (event.key === Qt.Key_End)
                    sidebar.viewModel.select(list.count - 1);
                else if (event.text.trim() !== "" && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier)))
                    sidebar.viewModel.typeAhead(event.text);
                else
                    event.accepted = false;
            }

            delegate: SidebarRow {
                required property int index

                width: ListView.view.width
                collapsed: sidebar.collapsed
                selected: ListView.isCurrentItem
                hasKeyboard: ListView.isCurrentItem && list.activeFocus && sidebar.showsFocus
                onClicked: {
                    list.forceActiveFocus(Qt.MouseFocusReason);
                    sidebar.showsFocus = false;
                    sidebar.viewModel.select(index);
                }
            }
        }
        Rectangle {
            Layout.fillWidth: true
            implicitHeight: Theme.hairline
            color: Theme.border
            visible: sidebar.viewModel.showsStorageFooter
        }
        StorageFooter {
            Layout.fillWidth: true
            viewModel: sidebar.viewModel
            collapsed: sidebar.collapsed
            visible: sidebar.viewModel.showsStorageFooter
        }
    }
}
