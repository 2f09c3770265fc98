#pragma once
// The symbol table for QML: `Symbols.source(name)`.

#include "Shared/Components/SymbolTable.h"

#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace cairnfield {

class Symbols : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    /// Where the picture lies; an empty address for no symbol.
    Q_INVOKABLE [[nodiscard]] static QUrl source(const QString& symbolName) {
        const std::string_view file = symbolFile(symbolName.toStdString());
        if (file.empty()) return {};
        return QUrl(QStringLiteral("qrc:/qt/qml/Cairnfield/Components/icons/%1.svg")
                        .arg(QLatin1StringView(file.data(), static_cast<qsizetype>(file.size()))));
    }
};

}  // namespace cairnfield
