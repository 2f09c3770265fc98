// The one action that a view suggests.
PlainButton {
    ink: Theme.textOnAccent
    fill: Theme.accent
    edge: Theme.accent
    horizontalPadding: Theme.spaceLarge
}
