#include "Main/ActivationToken.h"

namespace cairnfield {

std::string activationTokenIn(const Environment& environment) {
    const std::string token = valueOf(environment, "XDG_ACTIVATION_TOKEN").value_or("");
    return token.empty() ? valueOf(environment, "DESKTOP_STARTUP_ID").value_or("") : token;
}

}  // namespace cairnfield
