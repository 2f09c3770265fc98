#pragma once
// Text of ours for the window. Main thread only.

#include "Features/Presentation/ShownText.h"

#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <string_view>
#include <vector>

namespace cairnfield {

[[nodiscard]] inline QString shown(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The rows of a card: of {label, value, isFixed}.
[[nodiscard]] inline QVariantList shownRows(const std::vector<LabelledText>& rows) {
    QVariantList list;
    for (const LabelledText& row : rows) {
        list << QVariantMap{
            {"label", shown(row.label)}, {"value", shown(row.value)}, {"isFixed", row.isFixed}};
    }
    return list;
}

}  // namespace cairnfield
