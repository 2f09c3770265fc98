import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Preferences

// Every setting, in six groups. What has the keyboard is kept in view.
ScreenView {
    id: view

    required property PreferencesViewModel viewModel
    readonly property bool isLookedAt: visible && Window.active
    readonly property Item focused: Window.activeFocusItem

    onIsLookedAtChanged: if (isLookedAt) viewModel.refresh()
    onFocusedChanged: area.show(focused)

    ScrollArea {
        id: area

        anchors.fill: parent
        margin: Theme.pageMargin
        contentHeight: page.implicitHeight + 2 * Theme.pageMargin

        ColumnLayout {
            id: page

            anchors.horizontalCenter: parent.horizontalCenter
            y: Theme.pageMargin
            width: Math.min(area.width - 2 * Theme.pageMargin, Theme.formWidth)
            spacing: Theme.pageMargin

            FileNotice {
                text: view.viewModel.fileNotice
            }
            FreeSpaceSection {
                viewModel: view.viewModel
            }
            MonitoringSection {
                viewModel: view.viewModel
            }
            NotificationsSection {
                viewModel: view.viewModel
            }
            GrowthSection {
                viewModel: view.viewModel
            }
            UpdatesSection {
                viewModel: view.viewModel
            }
            PreservationSection {
                viewModel: view.viewModel
            }
        }
    }
}
