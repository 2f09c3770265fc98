import QtQuick
import QtQuick.Layouts
import Cairnfield.Components

// What is so, without a control to change it.
DetailRow {
    Layout.fillWidth: true
    Layout.topMargin: Theme.spaceTiny
    Layout.bottomMargin: Theme.spaceTiny
}
