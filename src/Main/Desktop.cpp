#include "Main/Desktop.h"

#include "Shared/Components/SymbolTable.h"
#include "Shared/Environment/Environment.h"

#include <QFile>
#include <QIcon>

#include <utility>

namespace cairnfield {

namespace {

constexpr int notificationPictureSize = 64;

QByteArray symbolPicture(const std::string& symbolName) {
    const std::string_view name = symbolFile(symbolName);
    QFile file(QStringLiteral(":/qt/qml/Cairnfield/Components/icons/%1.svg")
                   .arg(QLatin1StringView(name.data(), static_cast<qsizetype>(name.size()))));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QImage programPicture() {
    return QIcon(QStringLiteral(":/icons/cairnfield.svg"))
        .pixmap(notificationPictureSize, notificationPictureSize)
        .toImage();
}

}  // namespace

Desktop::Desktop(const QDBusConnection& bus, Machine& machine, const BaseDirectories& directories)
    : appearance(bus),
      workspace(bus, LinuxWorkspace::standardPlaces(), environmentAtStart()),
      statusItem(bus, symbolPicture),
      notificationCenter(bus, machine.continuousClock, machine.mainThread, programPicture()),
      autostart(directories.configHome, runningProgram()) {
    notificationCenter.onActivationToken(
        [this](std::string token) { workspace.useActivationToken(std::move(token)); });
}

}  // namespace cairnfield
