#include "Shared/Components/Contrast.h"

#include <algorithm>
#include <cmath>

namespace cairnfield {

namespace {

double linear(double channel) {
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double worstContrast(const QColor& color, const QList<QColor>& backgrounds, double tintOpacity) {
    double worst = 21;
    for (const QColor& background : backgrounds) {
        const double onTint = contrastRatio(color, mix(color, background, tintOpacity));
        worst = std::min({worst, contrastRatio(color, background), onTint});
    }
    return worst;
}

/// The colour on 8 bits a channel, as it reaches the screen.
QColor withLightness(const QColor& color, double lightness) {
    return QColor(
        QColor::fromHslF(color.hslHueF(), color.hslSaturationF(), static_cast<float>(lightness)).rgb());
}

}  // namespace

double contrastRatio(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

QColor mix(const QColor& top, const QColor& bottom, double opacity) {
    const auto channel = [opacity](double above, double below) {
        return static_cast<int>(std::lround(255 * (above * opacity + below * (1 - opacity))));
    };
    return {channel(top.redF(), bottom.redF()), channel(top.greenF(), bottom.greenF()),
            channel(top.blueF(), bottom.blueF())};
}

QColor readableOn(const QColor& color, const QList<QColor>& backgrounds, double tintOpacity) {
    constexpr double step = 1.0 / 255;
    const double start = color.lightnessF();
    for (double distance = 0; distance <= 1; distance += step) {
        for (const double lightness : {start - distance, start + distance}) {
            if (lightness < 0 || lightness > 1) continue;
            const QColor shade = distance == 0 ? QColor(color.rgb()) : withLightness(color, lightness);
            if (worstContrast(shade, backgrounds, tintOpacity) >= readableContrast) return shade;
        }
    }
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    return worstContrast(black, backgrounds, 0) >= worstContrast(white, backgrounds, 0) ? black : white;
}

QColor textColorOn(const QColor& fill) {
    const QColor white(Qt::white);
    return contrastRatio(white, fill) >= readableContrast ? white : QColor(0x14, 0x14, 0x18);
}

}  // namespace cairnfield
