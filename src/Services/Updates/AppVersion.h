#pragma once

#include "Services/Updates/BundleInformation.h"

namespace cairnfield::AppVersion {

/// As a person reads it: "1.2.0"; "0.0.0" when the build does not say.
[[nodiscard]] std::string shortVersion(const BundleInformation& bundle);

/// Tells two builds of one version apart.
[[nodiscard]] std::optional<std::string> build(const BundleInformation& bundle);

}  // namespace cairnfield::AppVersion
