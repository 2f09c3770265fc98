#pragma once
// The one table that says which of our pictures stands for each symbol name. Plain data, any thread.

#include <span>
#include <string_view>

namespace cairnfield {

struct SymbolFile {
    std::string_view symbolName;
    std::string_view file;  ///< without folder and ".svg"
};

/// Every symbol that the program names.
[[nodiscard]] std::span<const SymbolFile> symbolFiles();

/// The picture for a symbol; empty for a name that is not in the table.
[[nodiscard]] std::string_view symbolFile(std::string_view symbolName);

}  // namespace cairnfield
