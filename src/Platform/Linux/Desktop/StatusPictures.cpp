#include "Platform/Linux/Desktop/StatusPictures.h"

#include <QBuffer>
#include <QPainter>
#include <QSvgRenderer>
#include <QtEndian>

#include <algorithm>
#include <array>

namespace cairnfield {

namespace {

struct ThemeIcon {
    std::string_view symbolName;
    std::string_view iconName;
};

constexpr std::array themeIcons{
    ThemeIcon{"internaldrive", "drive-harddisk-symbolic"},
    ThemeIcon{"exclamationmark.triangle", "dialog-warning-symbolic"},
    ThemeIcon{"exclamationmark.octagon", "dialog-error-symbolic"},
    ThemeIcon{"arrow.clockwise", "view-refresh-symbolic"},
    ThemeIcon{"macwindow", "window-new-symbolic"},
    ThemeIcon{"arrow.down.circle", "software-update-available-symbolic"},
    ThemeIcon{"pause.circle", "media-playback-pause-symbolic"},
    ThemeIcon{"play.circle", "media-playback-start-symbolic"},
    ThemeIcon{"power", "application-exit-symbolic"},
};

constexpr std::array panelSizes{16, 22, 24, 32, 48};
constexpr int menuSize = 16;

constexpr QRgb panelGray = 0xFF808087;
constexpr QRgb panelOrange = 0xFFD0750F;
constexpr QRgb panelRed = 0xFFE0433B;

}  // namespace

std::string_view themeIconName(std::string_view symbolName) {
    const auto* const icon = std::ranges::find(themeIcons, symbolName, &ThemeIcon::symbolName);
    return icon == themeIcons.end() ? std::string_view{} : icon->iconName;
}

QColor panelColor(std::string_view symbolName) {
    if (symbolName == "exclamationmark.triangle") return QColor::fromRgb(panelOrange);
    if (symbolName == "exclamationmark.octagon") return QColor::fromRgb(panelRed);
    return QColor::fromRgb(panelGray);
}

const QList<StatusPixmap>& StatusPictures::pixmaps(const std::string& symbolName) {
    const auto [entry, isNew] = pixmaps_.try_emplace(symbolName);
    if (!isNew) return entry->second;
    for (const int size : panelSizes) {
        const QImage image = drawn(symbolName, size);
        if (image.isNull()) continue;
        QByteArray pixels(qsizetype{4} * size * size, Qt::Uninitialized);
        char* place = pixels.data();
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x, place += 4) qToBigEndian<quint32>(image.pixel(x, y), place);
        }
        entry->second.push_back({size, size, pixels});
    }
    return entry->second;
}

QByteArray StatusPictures::menuPicture(const std::string& symbolName) const {
    const QImage image = drawn(symbolName, menuSize);
    if (image.isNull()) return {};
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QImage StatusPictures::drawn(const std::string& symbolName, int size) const {
    QSvgRenderer renderer(source_(symbolName));
    if (!renderer.isValid()) return {};
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), panelColor(symbolName));
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

}  // namespace cairnfield
