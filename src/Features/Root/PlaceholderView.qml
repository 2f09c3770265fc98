import QtQuick
import Cairnfield.Components

// What a section shows before its screen exists.
ScreenView {
    id: screen

    required property string title
    required property string symbolName

    EmptyStateView {
        anchors.fill: parent
        title: screen.title
        message: qsTr("This screen comes with a later version of Cairnfield.")
        symbolName: screen.symbolName
    }
}
