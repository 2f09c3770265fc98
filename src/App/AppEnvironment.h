#pragma once
// What the model needs from outside; all of it outlives the model. Main chooses the implementations, and so
// do the tests.

#include "Persistence/ApplicationSupport.h"
#include "Shared/Paths/FilePath.h"

#include <functional>

namespace cairnfield {

class Application;
class ContinuousClock;
class Executor;
class FileEventStreamCreating;
class LaunchAtLoginManaging;
class NotificationCenter;
class NotificationDelivering;
class PathAuthorizing;
class ProcessRunning;
class TreeMeasuring;
class UpdateChecking;
class VolumeCapacityReading;
class VolumeInformation;
class WallClock;
class Workspace;
struct CleanupProgress;

struct AppEnvironment {
    Executor& mainThread;
    Executor& pool;      ///< for actors and other work that never blocks
    Executor& blocking;  ///< for short blocking work, such as listing directories
    Executor& walking;   ///< for measuring trees
    ContinuousClock& continuousClock;
    const WallClock& wallClock;
    ProcessRunning& processRunner;
    TreeMeasuring& treeMeasurer;
    const PathAuthorizing& authorization;
    const VolumeCapacityReading& capacityReader;
    const VolumeInformation& volumes;
    FileEventStreamCreating& fileEventStreams;
    NotificationDelivering& notifications;
    NotificationCenter& notificationCenter;  ///< for the answers of the person
    LaunchAtLoginManaging& launchAtLogin;
    UpdateChecking& updates;
    Application& application;
    Workspace& workspace;
    ApplicationSupport support;
    FilePath home;  ///< the volume that holds it is the one that is watched
    /// Told of what a cleanup reports, before the work that is reported begins and on the thread that does
    /// it, so that a script can step in between. May be absent; must not throw.
    std::function<void(const CleanupProgress&)> cleanupReported = {};
};

}  // namespace cairnfield
