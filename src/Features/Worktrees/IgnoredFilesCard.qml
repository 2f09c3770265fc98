import QtQuick
import QtQuick.Layouts
import Cairnfield.Components

// What lies in the worktree without being in Git, and would go with it.
StatusSurface {
    id: card

    required property var entries
    required property string notice

    contentItem: ColumnLayout {
        spacing: Theme.spaceSmall

        SectionHeader {
            Layout.fillWidth: true
            title: qsTr("Ignored local files")
            subtitle: card.notice
        }
        Repeater {
            model: card.entries
            delegate: IgnoredEntryRow {
                required property var modelData

                Layout.fillWidth: true
                entry: modelData
            }
        }
    }
}
