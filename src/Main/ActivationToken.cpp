#include "Main/ActivationToken.h"

#include <QByteArray>
#include <QGuiApplication>

namespace cairnfield {

namespace {

constexpr const char* waylandVariable = "XDG_ACTIVATION_TOKEN";
constexpr const char* startupVariable = "DESKTOP_STARTUP_ID";

}  // namespace

std::string activationTokenOfStart() {
    std::string token = qgetenv(waylandVariable).toStdString();
    if (token.empty()) token = qgetenv(startupVariable).toStdString();
    return token;
}

void useActivationToken(const std::string& token) {
    // The one way in which Qt takes a token.
    if (!token.empty() && isOnWayland()) qputenv(waylandVariable, QByteArray::fromStdString(token));
}

bool isOnWayland() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

}  // namespace cairnfield
