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

    Flickable {
        id: area

        anchors.fill: parent
        contentWidth: width
        contentHeight: page.implicitHeight + 2 * Theme.pageMargin
        boundsBehavior: Flickable.StopAtBounds
        clip: true

        function show(item: Item) {
            for (let above = item; above !== page; above = above.parent)
                if (!above)
                    return;
            const top = item.mapToItem(contentItem, 0, 0).y - Theme.pageMargin;
            const bottom = top + item.height + 2 * Theme.pageMargin;
            if (top < contentY)
                contentY = Math.max(0, top);
            else if (bottom > contentY + height)
                contentY = Math.min(contentHeight, bottom) - height;
        }

        ColumnLayout {
            id: page

            anchors.horizontalCenter: parent.horizontalCenter
            y: Theme.pageMargin
            width: Math.min(area.width - 2 * Theme.pageMargin, Theme.formWidth)
            spacing: Theme.pageMargin

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
    ThinScrollBar {
        view: area
    }
}
