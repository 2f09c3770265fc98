#pragma once

#include <cstdint>

namespace cairnfield {

/// To be called once, first thing: allows this process more open descriptors at a time than the usual 1,024,
/// of which a few hundred commands at once would take most. Children inherit the limit, so it is kept to what
/// no program minds. Never lowers it and never fails; gives the limit that holds now.
std::uint64_t raiseDescriptorLimit() noexcept;

}  // namespace cairnfield
