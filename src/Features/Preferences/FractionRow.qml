import QtQuick
import Cairnfield.Components
import Cairnfield.Preferences

// A fraction that is picked from a few.
FormRow {
    id: row

    required property FractionSetting setting

    MenuPicker {
        id: picker

        title: row.label
        model: row.setting.options
        displayText: row.setting.text
        onActivated: index => row.setting.choose(index)

        Binding {
            target: picker
            property: "currentIndex"
            value: row.setting.index
        }
    }
}
