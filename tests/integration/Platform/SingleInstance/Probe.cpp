// A program of which there is to be one. Says what its claim came to; the first one then says each token that
// a later start brings, until it reads "deaf" (it answers no more) or its input ends. Usage:
// single-instance-probe LOCK-FILE [TOKEN]

#include "Platform/Linux/Desktop/BusSingleInstance.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QSocketNotifier>

#include <cstdio>
#include <string>
#include <unistd.h>

namespace cairnfield {

namespace {

void say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

int run(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    BusSingleInstance instance(QDBusConnection::sessionBus(), FilePath(argv[1]),
                               std::chrono::milliseconds(2000));
    switch (instance.claim(argc > 2 ? argv[2] : "")) {
        case InstanceClaim::wasHandedOver:
            say("handed over");
            return 0;
        case InstanceClaim::isElsewhere:
            say("elsewhere");
            return 1;
        case InstanceClaim::isFirst:
            break;
    }
    say("first");
    instance.onActivate([](const std::string& token) { say("activated " + token); });
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, [&instance] {
        char words[64];
        if (::read(STDIN_FILENO, words, sizeof words) <= 0) return QCoreApplication::quit();
        instance.onActivate({});
        say("deaf");
    });
    return QCoreApplication::exec();
}

}  // namespace

}  // namespace cairnfield

int main(int argc, char** argv) {
    return cairnfield::run(argc, argv);
}
