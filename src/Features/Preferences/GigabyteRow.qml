import QtQuick
import Cairnfield.Components
import Cairnfield.Preferences

// A byte count that is typed.
FormRow {
    id: row

    required property GigabyteSetting setting

    GigabyteField {
        title: row.label
        shownText: row.setting.text
        onCommitted: typed => row.setting.commit(typed)
    }
}
