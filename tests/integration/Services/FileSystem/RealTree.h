#pragma once
// Trees on a real disk, what GNU du and find say of them, and children of the test process for what must not
// happen in itself.

#include "Models/DirectoryScan.h"
#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Shared/Concurrency/FileDescriptor.h"
#include "support/TemporaryDirectory.h"

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <stop_token>
#include <string>
#include <utility>

namespace cairnfield {

/// What counts in a tree, as du and find tell it: neither the root's own entry nor links, and no other file
/// system.
struct OracleTotals {
    std::int64_t bytes = 0;
    std::int64_t files = 0;

    friend bool operator==(const OracleTotals&, const OracleTotals&) = default;
};
void PrintTo(const OracleTotals& totals, std::ostream* stream);

[[nodiscard]] OracleTotals oracleTotals(const FilePath& root);
[[nodiscard]] OracleTotals totalsOf(const DirectoryScanResult& result);

/// The standard output of a shell command in which "$1" is the path. Fails the test when there is none to be
/// had.
[[nodiscard]] std::string outputOf(const std::string& command, const FilePath& path);

/// A directory reached by descriptor, for names and depths that no path can hold.
class OpenFolder {
public:
    explicit OpenFolder(const FilePath& path);
    [[nodiscard]] OpenFolder makeFolder(const std::string& name) const;
    void write(const std::string& name, std::size_t bytes) const;
    [[nodiscard]] int descriptor() const { return descriptor_.get(); }

private:
    explicit OpenFolder(FileDescriptor descriptor) : descriptor_(std::move(descriptor)) {}
    FileDescriptor descriptor_;
};

/// So many levels, each a directory with so many subdirectories with names of about so many bytes, the next
/// level in one of them.
void makeWideLevels(const FilePath& root, int levels, int width, std::size_t nameLength);

/// Measures with threads that live no longer than the call, so that a test may fork between its walks.
class Measuring {
public:
    explicit Measuring(LinuxTreeMeasurer::Threads threads = LinuxTreeMeasurer::Threads::two)
        : threads_(threads) {}
    [[nodiscard]] DirectoryScanResult operator()(const FilePath& root, std::stop_token stop = {}) const;
    [[nodiscard]] std::int64_t allocatedSize(const FilePath& item) const;

private:
    LinuxTreeMeasurer::Threads threads_;
};

/// Runs the body in a child and gives what it answers; "threw: ..." when it threw. The child may limit itself
/// as it likes.
[[nodiscard]] std::string inChild(const std::function<std::string()>& body);

}  // namespace cairnfield
