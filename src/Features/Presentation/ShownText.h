#pragma once
// The smallest pieces that a screen's words come in. Plain values, any thread.

#include <string>
#include <string_view>

namespace cairnfield {

/// A label with its value.
struct LabelledText {
    std::string label;
    std::string value;
    bool isFixed = false;  ///< the value is something that a person copies into a command

    friend bool operator==(const LabelledText&, const LabelledText&) = default;
};

/// A sentence with the symbol that stands before it.
struct SymbolText {
    std::string_view symbolName;
    std::string text;

    friend bool operator==(const SymbolText&, const SymbolText&) = default;
};

}  // namespace cairnfield
