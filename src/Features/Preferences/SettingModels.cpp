#include "Features/Preferences/SettingModels.h"

#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Formatting/GigabyteField.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

SwitchSetting::SwitchSetting(Setting<bool>& setting, QObject* parent)
    : QObject(parent), setting_(setting), subscription_(setting.observe([this] { emit changed(); })) {}

SteppedSetting::SteppedSetting(Setting<std::int64_t>& setting, Range range, QString wording, QObject* parent)
    : QObject(parent),
      setting_(setting),
      range_(range),
      wording_(std::move(wording)),
      subscription_(setting.observe([this] { emit changed(); })) {}

QString SteppedSetting::text() const {
    return wording_.arg(setting_.get());
}

void SteppedSetting::increase() {
    if (canIncrease()) set(setting_.get() + range_.step);
}

void SteppedSetting::decrease() {
    if (canDecrease()) set(setting_.get() - range_.step);
}

void SteppedSetting::set(std::int64_t value) {
    setting_.set(std::clamp(value, range_.minimum, range_.maximum));
}

FractionSetting::FractionSetting(Setting<double>& setting, std::vector<Option> options, QObject* parent)
    : QObject(parent),
      setting_(setting),
      options_(std::move(options)),
      subscription_(setting.observe([this] { emit changed(); })) {}

QStringList FractionSetting::options() const {
    QStringList titles;
    for (const Option& option : options_) titles.append(option.title);
    return titles;
}

int FractionSetting::index() const {
    const auto place = std::ranges::find(options_, setting_.get(), &Option::fraction);
    return place == options_.end() ? -1 : static_cast<int>(place - options_.begin());
}

QString FractionSetting::text() const {
    const int chosen = index();
    if (chosen >= 0) return options_[static_cast<std::size_t>(chosen)].title;
    return QString::fromStdString(ByteFormatting::percentString(setting_.get()));
}

void FractionSetting::choose(int index) {
    if (index < 0 || index >= static_cast<int>(options_.size())) return;
    setting_.set(options_[static_cast<std::size_t>(index)].fraction);
}

GigabyteSetting::GigabyteSetting(Setting<std::int64_t>& setting, QObject* parent)
    : QObject(parent), setting_(setting), subscription_(setting.observe([this] { emit changed(); })) {}

QString GigabyteSetting::text() const {
    return QString::fromStdString(GigabyteField::text(setting_.get()));
}

void GigabyteSetting::commit(const QString& typed) {
    if (typed == text()) return;
    if (const auto bytes = GigabyteField::bytesFromText(typed.toStdString())) setting_.set(*bytes);
}

}  // namespace cairnfield
