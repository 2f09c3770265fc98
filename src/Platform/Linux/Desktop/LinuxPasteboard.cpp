#include "Platform/Linux/Desktop/LinuxPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace cairnfield {

void LinuxPasteboard::clearAndWrite(std::string text) {
    QClipboard& clipboard = *QGuiApplication::clipboard();
    clipboard.clear();
    clipboard.setText(QString::fromStdString(text));
}

}  // namespace cairnfield
