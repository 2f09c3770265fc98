#include "Services/Updates/AppVersion.h"

namespace cairnfield {

std::string AppVersion::shortVersion(const BundleInformation& bundle) {
    return bundle.text("CFBundleShortVersionString").value_or("0.0.0");
}

std::optional<std::string> AppVersion::build(const BundleInformation& bundle) {
    return bundle.text("CFBundleVersion");
}

}  // namespace cairnfield
