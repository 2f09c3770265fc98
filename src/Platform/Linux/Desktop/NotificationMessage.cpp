#include "Platform/Linux/Desktop/NotificationMessage.h"

#include <QDBusMetaType>
#include <QVariantMap>

namespace cairnfield {

namespace {

const QString desktopEntry = QStringLiteral("com.cairnfield.app");
/// From the desktop's sound theme: the one for news.
const QString sound = QStringLiteral("message-new-instant");
/// Shown by the services that list the default action beside the buttons.
const QString defaultActionTitle = QStringLiteral("Open Cairnfield");
constexpr int lifetimeOfTheService = -1;

/// As the interface numbers them; it wants a byte.
enum class Urgency : uchar { low, normal, critical };

/// Malformed bytes become U+FFFD: a message with anything else would cost us the bus.
QString text(const std::string& bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

QString name(std::string_view known) {
    return QString::fromLatin1(known.data(), static_cast<qsizetype>(known.size()));
}

QStringList actions(const std::vector<NotificationButton>& buttons) {
    QStringList list{name(NotificationResponse::defaultActionIdentifier), defaultActionTitle};
    for (const NotificationButton& button : buttons) list << text(button.identifier) << text(button.title);
    return list;
}

}  // namespace

NotificationCapabilities NotificationCapabilities::named(const QStringList& names) {
    return {.hasActions = names.contains(QLatin1String("actions")),
            .rendersMarkup = names.contains(QLatin1String("body-markup")),
            .playsSound = names.contains(QLatin1String("sound")),
            .showsImages =
                names.contains(QLatin1String("icon-static")) || names.contains(QLatin1String("icon-multi"))};
}

NotificationImage NotificationImage::from(const QImage& picture) {
    const QImage pixels = picture.convertToFormat(QImage::Format_RGBA8888);
    return {.width = pixels.width(),
            .height = pixels.height(),
            .rowStride = static_cast<int>(pixels.bytesPerLine()),
            .pixels = QByteArray(reinterpret_cast<const char*>(pixels.constBits()), pixels.sizeInBytes())};
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotificationImage& image) {
    constexpr bool hasAlpha = true;
    constexpr int bitsPerSample = 8;
    constexpr int channels = 4;
    argument.beginStructure();
    argument << image.width << image.height << image.rowStride << hasAlpha << bitsPerSample << channels
             << image.pixels;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotificationImage& image) {
    bool hasAlpha = false;
    int bitsPerSample = 0;
    int channels = 0;
    argument.beginStructure();
    argument >> image.width >> image.height >> image.rowStride >> hasAlpha >> bitsPerSample >> channels >>
        image.pixels;
    argument.endStructure();
    return argument;
}

QString escapedMarkup(const QString& text) {
    QString escaped = text;
    escaped.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    escaped.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    escaped.replace(QLatin1Char('>'), QLatin1String("&gt;"));
    return escaped;
}

QVariantList notifyArguments(const NotificationRequest& request,
                             const std::vector<NotificationButton>& buttons,
                             const NotificationCapabilities& capabilities, const NotificationImage& image,
                             uint replaced) {
    const Urgency urgency =
        request.interruptionLevel == InterruptionLevel::timeSensitive ? Urgency::critical : Urgency::normal;
    QVariantMap hints{{QStringLiteral("urgency"), QVariant::fromValue(static_cast<uchar>(urgency))},
                      {QStringLiteral("desktop-entry"), desktopEntry}};
    if (capabilities.playsSound) hints.insert(QStringLiteral("sound-name"), sound);
    if (capabilities.showsImages && !image.isEmpty()) {
        qDBusRegisterMetaType<NotificationImage>();
        hints.insert(QStringLiteral("image-data"), QVariant::fromValue(image));
    }
    const QString body = text(request.body);
    return {QStringLiteral("Cairnfield"),
            replaced,
            desktopEntry,
            text(request.title),
            capabilities.rendersMarkup ? escapedMarkup(body) : body,
            capabilities.hasActions ? actions(buttons) : QStringList(),
            hints,
            lifetimeOfTheService};
}

}  // namespace cairnfield
