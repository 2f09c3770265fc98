#include "Platform/Linux/Desktop/ApplicationObject.h"

#include <QDBusError>
#include <QMetaObject>

namespace cairnfield {

void ApplicationObject::Activate(const QVariantMap& platformData) {
    if (!observer_) {
        if (calledFromDBus()) sendErrorReply(QDBusError::Failed, QStringLiteral("The program is ending"));
        return;
    }
    const QVariant wayland = platformData.value(QStringLiteral("activation-token"));
    const QVariant startup = platformData.value(QStringLiteral("desktop-startup-id"));
    const std::string token = (wayland.isValid() ? wayland : startup).toString().toStdString();
    QMetaObject::invokeMethod(this, [observer = observer_, token] { observer(token); }, Qt::QueuedConnection);
}

void ApplicationObject::Open(const QStringList&, const QVariantMap& platformData) {
    Activate(platformData);
}

void ApplicationObject::ActivateAction(const QString& name, const QVariantList&, const QVariantMap&) {
    if (calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("There is no action named %1").arg(name));
}

}  // namespace cairnfield
