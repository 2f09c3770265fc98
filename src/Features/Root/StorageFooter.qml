import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Cairnfield.Components
import Cairnfield.Root

// The storage status while space is low. Pressing it leads to the worktrees.
T.Button {
    id: footer

    required property RootViewModel viewModel
    required property bool collapsed
    readonly property color tint: Theme.tint(viewModel.levelTint)

    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: collapsed ? (width - Theme.iconSize) / 2 : Theme.spaceMedium
    verticalPadding: Theme.spaceSmall
    Accessible.name: viewModel.levelText + ", " + viewModel.freeText
    Accessible.description: qsTr("Opens the worktree list")
    Accessible.onPressAction: footer.clicked()
    Keys.onReturnPressed: footer.clicked()
    Keys.onEnterPressed: footer.clicked()
    onClicked: viewModel.selectWorktrees()

    contentItem: RowLayout {
        spacing: Theme.spaceMedium

        SymbolIcon {
            symbolName: footer.viewModel.levelSymbolName
            color: footer.tint
        }
        ColumnLayout {
            spacing: 0
            visible: !footer.collapsed

            Text {
                Layout.fillWidth: true
                text: footer.viewModel.levelText
                textFormat: Text.PlainText
                font: Theme.bodyFont
                color: footer.tint
                elide: Text.ElideRight
            }
            Text {
                Layout.fillWidth: true
                text: footer.viewModel.freeText
                textFormat: Text.PlainText
                font: Theme.captionFont
                color: Theme.textSecondary
                elide: Text.ElideRight
            }
        }
    }
    background: RowBackground {
        hovered: footer.hovered
        hasKeyboard: footer.visualFocus
    }

    Tip {
        text: footer.Accessible.name
        shown: footer.collapsed && (footer.hovered || footer.visualFocus)
    }
}
