#pragma once
// What the session can ask of the running program, over org.freedesktop.Application. Everything here means:
// show the window. Main thread only.

#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <string>

namespace cairnfield {

class ApplicationObject final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    [[nodiscard]] static QString objectPath() { return QStringLiteral("/com/cairnfield/app"); }

    /// Given the token that came along, empty for none. Without an observer the caller gets an error.
    void onActivate(std::function<void(std::string)> observer) { observer_ = std::move(observer); }

public slots:
    // NOLINTBEGIN(readability-identifier-naming): the names are those of the bus interface
    void Activate(const QVariantMap& platformData);
    /// The program opens no files: they are left aside.
    void Open(const QStringList& uris, const QVariantMap& platformData);
    /// It offers no actions either: each is answered with an error.
    void ActivateAction(const QString& name, const QVariantList& parameter, const QVariantMap& platformData);
    // NOLINTEND(readability-identifier-naming)

private:
    std::function<void(std::string)> observer_;
};

}  // namespace cairnfield
