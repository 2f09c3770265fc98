#pragma once
// The desktop's wishes about looks, for the theme. Main thread only; follows changes while the program runs.

#include "Platform/Appearance.h"

#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace cairnfield {

class AppearanceViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the window")
    Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
    Q_PROPERTY(bool prefersHighContrast READ prefersHighContrast NOTIFY changed)
    Q_PROPERTY(bool prefersReducedMotion READ prefersReducedMotion NOTIFY changed)
    Q_PROPERTY(QColor accentColor READ accentColor NOTIFY changed)
    Q_PROPERTY(QString fixedFontFamily READ fixedFontFamily CONSTANT)

public:
    /// `appearance` outlives the view model, which is its one observer.
    explicit AppearanceViewModel(Appearance& appearance, QObject* parent = nullptr);
    ~AppearanceViewModel() override;

    [[nodiscard]] bool isDark() const { return settings_.isDark; }
    [[nodiscard]] bool prefersHighContrast() const { return settings_.prefersHighContrast; }
    [[nodiscard]] bool prefersReducedMotion() const { return settings_.prefersReducedMotion; }
    /// The program's own blue when the desktop names no colour.
    [[nodiscard]] QColor accentColor() const;
    [[nodiscard]] static QString fixedFontFamily();

signals:
    void changed();

private:
    Appearance& appearance_;
    AppearanceSettings settings_;
};

}  // namespace cairnfield
