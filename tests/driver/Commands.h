#pragma once
// What each command of the driver does. A command's own words have been read when it is made; what is left is
// a function that runs it and prints its lines. Commands hold no logic of the program's: they call and they
// print.

#include "Persistence/SettingsStore.h"
#include "driver/JsonLines.h"
#include "driver/Words.h"

#include <functional>
#include <string>

namespace cairnfield {

/// Writes the settings that stand before the command; given only to what needs the program.
using Settle = std::function<void(SettingsStore&)>;

/// Reads the words from the command's name on. Throws WrongWords.
[[nodiscard]] std::function<void(const Settle&, JsonLines&)> commandFrom(Words words);

[[nodiscard]] std::string usage();

}  // namespace cairnfield
