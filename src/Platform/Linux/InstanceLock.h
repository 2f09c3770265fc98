#pragma once
// Keeps a second program from writing the same files. The lock goes with the process that holds it, however
// that ends; the file stays. Blocking for a moment, any thread.

#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Paths/FilePath.h"

namespace cairnfield {

class InstanceLock {
public:
    enum class Outcome {
        taken,
        heldByAnother,
        unavailable,  ///< the file system gives no lock: a line in the log says why
    };

    /// Makes the file and its folder where they are missing.
    [[nodiscard]] Outcome take(const FilePath& file);
    void release() { file_.reset(); }

private:
    FileDescriptor file_;
};

}  // namespace cairnfield
