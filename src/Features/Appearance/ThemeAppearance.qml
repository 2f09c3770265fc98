import QtQuick
import Cairnfield.Appearance
import Cairnfield.Components

// Lets the theme follow the desktop's wishes. One in each window: every window has a theme of its own.
Item {
    id: wishes

    required property AppearanceViewModel appearance

    visible: false
    Accessible.ignored: true

    Binding {
        target: Theme
        property: "dark"
        value: wishes.appearance.isDark
    }
    Binding {
        target: Theme
        property: "highContrast"
        value: wishes.appearance.prefersHighContrast
    }
    Binding {
        target: Theme
        property: "reducedMotion"
        value: wishes.appearance.prefersReducedMotion
    }
    Binding {
        target: Theme
        property: "desktopAccent"
        value: wishes.appearance.accentColor
    }
    Binding {
        target: Theme
        property: "fixedFontFamily"
        value: wishes.appearance.fixedFontFamily
    }
}
