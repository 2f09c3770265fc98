#include "Features/Appearance/AppearanceViewModel.h"

#include <QFontDatabase>

namespace cairnfield {

namespace {
constexpr QRgb ownAccent = 0x2F6FDE;
}

AppearanceViewModel::AppearanceViewModel(Appearance& appearance, QObject* parent)
    : QObject(parent), appearance_(appearance), settings_(appearance.settings()) {
    appearance.onChange([this] {
        settings_ = appearance_.settings();
        emit changed();
    });
}

AppearanceViewModel::~AppearanceViewModel() {
    appearance_.onChange({});
}

QColor AppearanceViewModel::accentColor() const {
    return QColor(QRgb{settings_.accentColor.value_or(ownAccent)});
}

QString AppearanceViewModel::fixedFontFamily() {
    return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

}  // namespace cairnfield
