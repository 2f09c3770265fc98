#pragma once
// What a person should know about the program's own files: one that could not be understood and where it is
// kept, one that cannot be read. Whoever reads and writes the files leaves it here, whoever shows it takes it
// from here. Any thread.

#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace cairnfield {

class StoredFileNotices {
public:
    /// One sentence or two for each file, by its name: "settings.json".
    using ByFile = std::map<std::string, std::string, std::less<>>;

    /// Replaces what was known of the file; no text means that all is well.
    void set(const std::string& fileName, std::string text);
    [[nodiscard]] ByFile all() const;

    /// Called at every change from now on, on the thread that makes it: it must not block and not call back.
    /// One at a time; none takes the last one away, and it is not called any more when this returns.
    void onChange(std::function<void()> listener);

private:
    mutable std::mutex mutex_;
    ByFile texts_;                    // guarded by mutex_
    std::function<void()> listener_;  // guarded by mutex_
};

}  // namespace cairnfield
