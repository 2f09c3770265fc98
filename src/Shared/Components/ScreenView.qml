import QtQuick

// The base of every screen: what the window asks of whichever one it shows. The window draws the section's title and, at
// its trailing side, the screen's `toolbar`.
Item {
    property Item toolbar: null

    // Ctrl+F: the search field, where there is one.
    function focusSearch() {}
    // F5 or Ctrl+R: the screen's scan, where there is one.
    function rescan() {}
}
