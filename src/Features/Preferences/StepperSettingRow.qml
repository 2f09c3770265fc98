import QtQuick
import Cairnfield.Components
import Cairnfield.Preferences

// A number that is stepped.
StepperRow {
    id: row

    required property SteppedSetting setting

    label: setting.text
    value: setting.value
    minimumValue: setting.minimum
    maximumValue: setting.maximum
    stepSize: setting.step
    canIncrease: setting.canIncrease
    canDecrease: setting.canDecrease
    onIncreased: setting.increase()
    onDecreased: setting.decrease()
}
