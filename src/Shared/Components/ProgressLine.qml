import QtQuick
import QtQuick.Templates as T

// How far something has come, under the words that say what. `value` is from 0 to 1.
T.ProgressBar {
    id: control

    required property string title

    implicitWidth: Theme.progressMinimumWidth
    implicitHeight: metrics.height + Theme.spaceTiny + Theme.barHeight
    Accessible.name: title

    FontMetrics {
        id: metrics
        font: Theme.captionFont
    }

    contentItem: Item {
        Text {
            width: parent.width
            text: control.title
            textFormat: Text.PlainText
            elide: Text.ElideRight
            font: Theme.captionFont
            color: Theme.textSecondary
        }
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: Theme.barHeight
            radius: height / 2
            color: Theme.track

            Rectangle {
                width: Math.max(parent.height, parent.width * control.visualPosition)
                height: parent.height
                radius: parent.radius
                color: Theme.accent
                visible: control.visualPosition > 0 && !control.indeterminate

                Behavior on width {
                    NumberAnimation {
                        duration: Theme.duration
                        easing.type: Easing.OutQuad
                    }
                }
            }
        }
    }
}
