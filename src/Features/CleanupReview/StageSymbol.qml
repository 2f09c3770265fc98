import QtQuick
import Cairnfield.Components

// A symbol that turns while its work is under way, unless motion is not wanted.
SymbolIcon {
    id: symbol

    property bool turns: false

    RotationAnimator on rotation {
        from: 0
        to: 360
        duration: Theme.turnDuration
        loops: Animation.Infinite
        running: symbol.turns && symbol.visible && Theme.turnDuration > 0
        onRunningChanged: if (!running) symbol.rotation = 0
    }
}
