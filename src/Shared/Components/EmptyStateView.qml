import QtQuick
import QtQuick.Layouts

// What stands where there is nothing to show: a symbol, what that means, and the one thing to do about it when `actionTitle`
// and `action` (a function) are both given.
Item {
    id: view

    required property string title
    required property string message
    required property string symbolName
    property string actionTitle
    property var action: null

    Accessible.role: Accessible.Grouping
    Accessible.name: title
    implicitWidth: column.implicitWidth
    implicitHeight: column.implicitHeight

    ColumnLayout {
        id: column

        anchors.centerIn: parent
        width: Math.min(view.width - 2 * Theme.pageMargin, Theme.measure)
        spacing: Theme.spaceSmall

        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: Theme.spaceSmall
            symbolName: view.symbolName
            size: Theme.iconSizeHero
            color: Theme.textSecondary
        }
        InfoText {
            Layout.fillWidth: true
            text: view.title
            font: Theme.headlineFont
            horizontalAlignment: Text.AlignHCenter
        }
        InfoText {
            Layout.fillWidth: true
            text: view.message
            color: Theme.textSecondary
            horizontalAlignment: Text.AlignHCenter
            lineHeight: 1.15
            visible: text !== ""
        }
        PrimaryButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: Theme.spaceSmall
            text: view.actionTitle
            visible: view.actionTitle !== "" && view.action !== null
            onClicked: view.action.call(view)
        }
    }
}
