#include "Shared/Components/SymbolTable.h"

#include <algorithm>
#include <array>

namespace cairnfield {

namespace {

constexpr std::array table{
    SymbolFile{"archivebox", "archive-box"},
    SymbolFile{"arrow.clockwise", "refresh"},
    SymbolFile{"arrow.down.circle", "download-circle"},
    SymbolFile{"arrow.down.right", "trend-down"},
    SymbolFile{"arrow.triangle.branch", "branch"},
    SymbolFile{"arrow.up.doc", "document-up"},
    SymbolFile{"arrow.up.right", "trend-up"},
    SymbolFile{"bell", "bell"},
    SymbolFile{"bell.badge", "bell-badge"},
    SymbolFile{"bell.slash", "bell-off"},
    SymbolFile{"chart.bar", "chart-bars"},
    SymbolFile{"chart.xyaxis.line", "chart-line"},
    SymbolFile{"checklist", "checklist"},
    SymbolFile{"checkmark", "check"},
    SymbolFile{"checkmark.circle", "check-circle"},
    SymbolFile{"checkmark.circle.fill", "check-circle-filled"},
    SymbolFile{"chevron.down", "chevron-down"},
    SymbolFile{"chevron.right", "chevron-right"},
    SymbolFile{"circle", "circle"},
    SymbolFile{"circle.dotted", "circle-dotted"},
    SymbolFile{"clock.arrow.circlepath", "history"},
    SymbolFile{"cloud", "cloud"},
    SymbolFile{"doc.on.doc", "copy"},
    SymbolFile{"doc.text", "document-text"},
    SymbolFile{"exclamationmark.bubble", "bubble-alert"},
    SymbolFile{"exclamationmark.octagon", "octagon-alert"},
    SymbolFile{"exclamationmark.triangle", "triangle-alert"},
    SymbolFile{"folder", "folder"},
    SymbolFile{"folder.badge.minus", "folder-minus"},
    SymbolFile{"folder.badge.plus", "folder-plus"},
    SymbolFile{"gearshape", "gear"},
    SymbolFile{"hammer", "hammer"},
    SymbolFile{"hand.raised", "hand"},
    SymbolFile{"info.circle", "info-circle"},
    SymbolFile{"internaldrive", "drive"},
    SymbolFile{"line.3.horizontal.decrease", "filter"},
    SymbolFile{"lock", "lock"},
    SymbolFile{"macwindow", "window"},
    SymbolFile{"magnifyingglass", "search"},
    SymbolFile{"minus", "minus"},
    SymbolFile{"pause.circle", "pause-circle"},
    SymbolFile{"person.crop.circle.badge.exclamationmark", "person-alert"},
    SymbolFile{"person.fill.checkmark", "person-check"},
    SymbolFile{"pin.fill", "pin-filled"},
    SymbolFile{"pin", "pin"},
    SymbolFile{"play.circle", "play-circle"},
    SymbolFile{"plus", "plus"},
    SymbolFile{"power", "power"},
    SymbolFile{"puzzlepiece.extension", "puzzle"},
    SymbolFile{"questionmark.circle", "question-circle"},
    SymbolFile{"shippingbox", "box"},
    SymbolFile{"sidebar.right", "sidebar-right"},
    SymbolFile{"sparkles", "sparkles"},
    SymbolFile{"square.grid.2x2", "grid"},
    SymbolFile{"terminal", "terminal"},
    SymbolFile{"trash", "trash"},
    SymbolFile{"xmark", "cross"},
};

}  // namespace

std::span<const SymbolFile> symbolFiles() {
    return table;
}

std::string_view symbolFile(std::string_view symbolName) {
    const auto* const entry = std::ranges::find(table, symbolName, &SymbolFile::symbolName);
    return entry == table.end() ? std::string_view{} : entry->file;
}

}  // namespace cairnfield
