import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.Worktrees

// One worktree: the verdict first, then what it rests on, then what can be done.
Flickable {
    id: view

    required property WorktreeDetail worktree

    signal preserveAndClean
    signal reveal
    signal openTerminal
    signal togglePin

    contentWidth: width
    contentHeight: column.implicitHeight + 2 * Theme.pageMargin
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    activeFocusOnTab: true
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Worktree detail")
    Keys.onUpPressed: flick(0, 600)
    Keys.onDownPressed: flick(0, -600)

    Connections {
        target: view.worktree

        function onHeaderChanged() {
            view.contentY = Math.min(view.contentY, Math.max(0, view.contentHeight - view.height));
        }
    }
    ThinScrollBar {
        view: view
    }
    FocusRing {
        parent: view
        anchors.margins: Theme.spaceTiny
        shown: view.activeFocus
    }

    ColumnLayout {
        id: column

        x: Theme.pageMargin
        y: Theme.pageMargin
        width: view.width - 2 * Theme.pageMargin
        spacing: Theme.cardGap

        WorktreeDetailHeader {
            Layout.fillWidth: true
            worktree: view.worktree
        }
        DetailCard {
            Layout.fillWidth: true
            title: qsTr("Git state")
            rows: view.worktree.gitState
        }
        IgnoredFilesCard {
            Layout.fillWidth: true
            entries: view.worktree.ignored
            notice: view.worktree.ignoredNotice
            visible: entries.length > 0
        }
        DetailCard {
            Layout.fillWidth: true
            title: qsTr("Remote")
            message: view.worktree.remoteMessage
            rows: view.worktree.remote
        }
        CleanupCard {
            Layout.fillWidth: true
            worktree: view.worktree
            onPreserveAndClean: view.preserveAndClean()
        }
        Flow {
            Layout.fillWidth: true
            spacing: Theme.spaceSmall

            PlainButton {
                text: qsTr("Reveal in Finder")
                symbolName: "folder"
                onClicked: view.reveal()
            }
            PlainButton {
                text: qsTr("Open in Terminal")
                symbolName: "terminal"
                onClicked: view.openTerminal()
            }
            PlainButton {
                text: view.worktree.pinTitle
                symbolName: "pin"
                help: qsTr("Pinned worktrees are never cleaned automatically")
                onClicked: view.togglePin()
            }
        }
    }
}
