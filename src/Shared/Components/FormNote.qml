import QtQuick
import QtQuick.Layouts

// A sentence among settings.
InfoText {
    Layout.fillWidth: true
    Layout.topMargin: Theme.spaceTiny
    Layout.bottomMargin: Theme.spaceTiny
    font: Theme.captionFont
    color: Theme.textSecondary
    lineHeight: 1.15
    visible: text !== ""
}
