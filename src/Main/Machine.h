#pragma once
// What the program runs on: threads, clocks, child processes and the file system, each in its real form. Made
// and destroyed on the main thread, before and after everything that works with it.

#include "Main/QtMainThread.h"
#include "Platform/Linux/InotifyEventStreams.h"
#include "Platform/Linux/LinuxChildProcess.h"
#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Platform/Linux/LinuxVolumeInformation.h"
#include "Services/Permissions/PathAuthorization.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Services/Storage/SystemVolumeCapacityReader.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/ThreadPool.h"

namespace cairnfield {

struct Machine {
    // In the order in which things need each other: what comes later goes first.
    QtMainThread mainThread;
    ThreadPool pool{2};
    ThreadPool blocking{2};
    ThreadPool walking{4};
    Reactor reactor;
    ReactorClock continuousClock{reactor};
    SystemWallClock wallClock;
    LinuxChildProcessStarter childProcessStarter{reactor};
    SystemProcessRunner processRunner{childProcessStarter, continuousClock, pool};
    LinuxTreeMeasurer treeMeasurer{walking, wallClock};
    InotifyEventStreams fileEventStreams{reactor, blocking};
    LinuxVolumeInformation volumes;
    SystemVolumeCapacityReader capacityReader{volumes, wallClock};
    DirectDistributionPathAuthorization authorization;
};

}  // namespace cairnfield
