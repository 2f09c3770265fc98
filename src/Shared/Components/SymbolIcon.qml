import QtQuick
import QtQuick.Controls.impl
import Cairnfield.Components

// One of our line pictures, by the name of its symbol, in one colour. Decoration for assistive technology: whoever shows it
// names what it means.
IconImage {
    required property string symbolName
    property int size: Theme.iconSize

    source: Symbols.source(symbolName)
    sourceSize.width: size
    sourceSize.height: size
    width: size
    height: size
    color: Theme.text
    Accessible.ignored: true
}
