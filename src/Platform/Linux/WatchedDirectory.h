#pragma once
// Opening a directory in order to watch it: by a path in which no component may be a symbolic link, and
// without making the system mount anything.

#include "Shared/Concurrency/FileDescriptor.h"

#include <sys/types.h>

#include <string>

namespace cairnfield {

/// Which directory it is, whatever it is called.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

struct OpenedDirectory {
    FileDescriptor descriptor;  ///< empty on failure, ELOOP when a link is in the way
    int error = 0;
};

[[nodiscard]] OpenedDirectory openWithoutLinks(const std::string& path);
/// The one of this name in an open directory.
[[nodiscard]] OpenedDirectory openInside(int parent, const std::string& name);

/// Whether the item of this name stands on this device, as far as can be told without mounting anything.
[[nodiscard]] bool standsOn(dev_t device, int parent, const std::string& name);

/// The path by which the system finds an open descriptor's item, whatever it is called by now.
[[nodiscard]] std::string pathOfDescriptor(int descriptor);

}  // namespace cairnfield
