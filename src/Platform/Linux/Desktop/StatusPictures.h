#pragma once
// How the desktop's panel shows our symbols: under a name of its own icon theme, and as pixels for where the
// theme has none. Main thread only.

#include "Platform/Linux/Desktop/StatusNotifierTypes.h"

#include <QColor>
#include <QImage>

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace cairnfield {

/// The freedesktop name that means the same as the symbol; empty when there is none.
[[nodiscard]] std::string_view themeIconName(std::string_view symbolName);

/// Legible on a light panel and on a dark one, since nobody says which it is: gray, or the level's colour for
/// what warns.
[[nodiscard]] QColor panelColor(std::string_view symbolName);

class StatusPictures {
public:
    /// The one-colour SVG of a symbol; empty for one that is not known.
    using Source = std::function<QByteArray(const std::string& symbolName)>;

    explicit StatusPictures(Source source) : source_(std::move(source)) {}

    /// In the sizes that panels use, the smallest first. Empty for a symbol without a picture.
    [[nodiscard]] const QList<StatusPixmap>& pixmaps(const std::string& symbolName);
    /// A PNG for a menu; empty for a symbol without a picture.
    [[nodiscard]] QByteArray menuPicture(const std::string& symbolName) const;

private:
    [[nodiscard]] QImage drawn(const std::string& symbolName, int size) const;

    const Source source_;
    std::map<std::string, QList<StatusPixmap>> pixmaps_;  ///< kept: each change of state asks again
};

}  // namespace cairnfield
