#pragma once
// How well two colours can be told apart, by the formula of the web's accessibility guidelines, and the
// choice of readable ones. Pure functions, reachable from QML as the singleton `Contrast`. Opaque colours
// only: an alpha is ignored except by mix.

#include <QColor>
#include <QList>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace cairnfield {

/// Small text has to have at least this ratio to what it stands on.
inline constexpr double readableContrast = 4.5;

/// From 1 (the same) to 21 (black on white).
[[nodiscard]] double contrastRatio(const QColor& one, const QColor& other);

/// What shows when `top` is laid over `bottom` at the opacity.
[[nodiscard]] QColor mix(const QColor& top, const QColor& bottom, double opacity);

/// The colour, darkened or lightened no more than needed to be readable on each of the backgrounds. When the
/// backgrounds leave no such shade, black or white, whichever does better. It is readable also on itself,
/// laid over each background at `tintOpacity`, as on a badge.
[[nodiscard]] QColor readableOn(const QColor& color, const QList<QColor>& backgrounds,
                                double tintOpacity = 0);

/// White where that is readable on the fill, else a near black.
[[nodiscard]] QColor textColorOn(const QColor& fill);

class Contrast : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    Q_INVOKABLE [[nodiscard]] static QColor readable(const QColor& color, const QList<QColor>& backgrounds,
                                                     double tintOpacity) {
        return readableOn(color, backgrounds, tintOpacity);
    }
    Q_INVOKABLE [[nodiscard]] static QColor textOn(const QColor& fill) { return textColorOn(fill); }
};

}  // namespace cairnfield
