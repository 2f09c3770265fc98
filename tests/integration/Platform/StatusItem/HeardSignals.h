#pragma once
// What came over a bus from one object, whoever it belongs to.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <string>
#include <vector>

namespace cairnfield {

class HeardSignals final : public QObject {
    Q_OBJECT

public:
    HeardSignals(QDBusConnection bus, const QString& path, const QString& interface) {
        bus.connect(QString(), path, interface, QString(), this, SLOT(hear(QDBusMessage)));
    }

    [[nodiscard]] std::vector<std::string> names() const { return names_; }
    [[nodiscard]] const QVariantList& lastArguments() const { return lastArguments_; }
    void forget() { names_.clear(); }

public slots:
    void hear(const QDBusMessage& message) {
        names_.push_back(message.member().toStdString());
        lastArguments_ = message.arguments();
    }

private:
    std::vector<std::string> names_;
    QVariantList lastArguments_;
};

}  // namespace cairnfield
