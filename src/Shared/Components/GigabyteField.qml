import QtQuick
import QtQuick.Layouts

// A byte count, typed as a number of gigabytes. `committed` tells what was typed once it is done: on Enter, and when the
// keyboard goes elsewhere. What `shownText` says then is what stands in the field; Escape brings it back sooner.
RowLayout {
    id: field

    required property string title
    required property string shownText

    signal committed(typed: string)

    spacing: Theme.spaceSmall
    onShownTextChanged: entry.text = shownText
    Component.onCompleted: entry.text = shownText
    Component.onDestruction: if (entry.activeFocus) field.committed(entry.text)

    TextEntry {
        id: entry

        title: field.title
        implicitWidth: Theme.numberFieldWidth
        horizontalAlignment: TextInput.AlignRight
        inputMethodHints: Qt.ImhFormattedNumbersOnly
        Accessible.description: qsTr("GB")
        onActiveFocusChanged: if (activeFocus) selectAll()
        onEditingFinished: {
            field.committed(text);
            text = field.shownText;
        }
        Keys.onEscapePressed: event => {
            event.accepted = text !== field.shownText;
            text = field.shownText;
        }
    }
    InfoText {
        text: qsTr("GB")
        color: Theme.textSecondary
        Accessible.ignored: true
    }
}
