#pragma once
// "--set KEY=JSON": a setting by its key, with a value of its type.

#include "Persistence/SettingsStore.h"

#include <string>

namespace cairnfield {

/// Throws WrongWords for an unknown key, for what is not JSON, and for a value of another type. A null takes
/// an optional setting away.
void applySetting(SettingsStore& settings, const std::string& word);

}  // namespace cairnfield
