#pragma once
// One setting each, as a control shows and changes it. A change is stored when it is made. They live on the
// main thread beside the settings, which outlive them.

#include "Persistence/SettingsStore.h"

#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <cstdint>
#include <vector>

namespace cairnfield {

/// On or off.
class SwitchSetting final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the screen")
    Q_PROPERTY(bool isOn READ isOn NOTIFY changed)

public:
    explicit SwitchSetting(Setting<bool>& setting, QObject* parent = nullptr);

    [[nodiscard]] bool isOn() const { return setting_.get(); }
    Q_INVOKABLE void turn(bool isOn) { setting_.set(isOn); }

signals:
    void changed();

private:
    Setting<bool>& setting_;
    Subscription subscription_;
};

/// A whole number that goes up and down in steps and stops at either end of its range. A stored number
/// outside the range is shown as it is; the first step brings it back.
class SteppedSetting final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the screen")
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(double value READ value NOTIFY changed)
    Q_PROPERTY(double minimum READ minimum CONSTANT)
    Q_PROPERTY(double maximum READ maximum CONSTANT)
    Q_PROPERTY(double step READ step CONSTANT)
    Q_PROPERTY(bool canIncrease READ canIncrease NOTIFY changed)
    Q_PROPERTY(bool canDecrease READ canDecrease NOTIFY changed)

public:
    struct Range {
        std::int64_t minimum;
        std::int64_t maximum;
        std::int64_t step;
    };

    /// `wording` holds "%1" where the number goes.
    SteppedSetting(Setting<std::int64_t>& setting, Range range, QString wording, QObject* parent = nullptr);

    [[nodiscard]] QString text() const;
    [[nodiscard]] double value() const { return static_cast<double>(setting_.get()); }
    [[nodiscard]] double minimum() const { return static_cast<double>(range_.minimum); }
    [[nodiscard]] double maximum() const { return static_cast<double>(range_.maximum); }
    [[nodiscard]] double step() const { return static_cast<double>(range_.step); }
    [[nodiscard]] bool canIncrease() const { return setting_.get() < range_.maximum; }
    [[nodiscard]] bool canDecrease() const { return setting_.get() > range_.minimum; }

    Q_INVOKABLE void increase();
    Q_INVOKABLE void decrease();

signals:
    void changed();

private:
    void set(std::int64_t value);

    Setting<std::int64_t>& setting_;
    const Range range_;
    const QString wording_;
    Subscription subscription_;
};

/// A fraction out of a few that are offered. A stored one that is not among them is shown all the same.
class FractionSetting final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the screen")
    Q_PROPERTY(QStringList options READ options CONSTANT)
    Q_PROPERTY(int index READ index NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)

public:
    struct Option {
        double fraction;
        QString title;
    };

    FractionSetting(Setting<double>& setting, std::vector<Option> options, QObject* parent = nullptr);

    [[nodiscard]] QStringList options() const;
    /// -1 for a fraction that is not offered.
    [[nodiscard]] int index() const;
    [[nodiscard]] QString text() const;

    /// An index that does not exist changes nothing.
    Q_INVOKABLE void choose(int index);

signals:
    void changed();

private:
    Setting<double>& setting_;
    const std::vector<Option> options_;
    Subscription subscription_;
};

/// A byte count that is typed in gigabytes.
class GigabyteSetting final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the screen")
    Q_PROPERTY(QString text READ text NOTIFY changed)

public:
    explicit GigabyteSetting(Setting<std::int64_t>& setting, QObject* parent = nullptr);

    [[nodiscard]] QString text() const;
    /// What is no number, or not one that fits, changes nothing; nor does the text that is shown, which may
    /// have been rounded.
    Q_INVOKABLE void commit(const QString& typed);

signals:
    void changed();

private:
    Setting<std::int64_t>& setting_;
    Subscription subscription_;
};

}  // namespace cairnfield
