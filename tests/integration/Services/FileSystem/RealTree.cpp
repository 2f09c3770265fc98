#include "RealTree.h"

#include "Shared/Concurrency/ThreadPool.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <ostream>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

namespace {

std::string readAll(int descriptor) {
    std::string all;
    char buffer[4096];
    for (ssize_t got = 0; (got = read(descriptor, buffer, sizeof buffer)) > 0;)
        all.append(buffer, static_cast<std::size_t>(got));
    return all;
}

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

void PrintTo(const OracleTotals& totals, std::ostream* stream) {
    *stream << totals.bytes << " bytes in " << totals.files << " files";
}

std::string outputOf(const std::string& command, const FilePath& path) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) fail("pipe2");
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        execl("/bin/sh", "sh", "-c", command.c_str(), "sh", path.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    std::string output = readAll(ends[0]);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 127) << command;
    EXPECT_FALSE(output.empty()) << command;
    return output;
}

OracleTotals oracleTotals(const FilePath& root) {
    // du counts the root itself and links; both go. A name may hold a newline, so find prints everything but
    // names.
    const std::string du = outputOf(R"(du -sxl -B1 -- "$1" 2>/dev/null | cut -f1)", root);
    const std::string find =
        outputOf(R"(find "$1" -xdev -mindepth 0 -printf '%D %y %b %d\n' 2>/dev/null)", root);
    OracleTotals totals{std::strtoll(du.c_str(), nullptr, 10), 0};
    std::istringstream lines(find);
    std::string device, rootDevice, kind;
    std::int64_t blocks = 0;
    int depth = 0;
    while (lines >> device >> kind >> blocks >> depth) {
        if (depth == 0) {
            rootDevice = device;
            totals.bytes -= blocks * 512;
        } else if (device == rootDevice && kind == "l") {
            totals.bytes -= blocks * 512;
        } else if (device == rootDevice && kind != "d") {
            ++totals.files;
        }
    }
    return totals;
}

OracleTotals totalsOf(const DirectoryScanResult& result) {
    return {result.totalBytes, result.fileCount};
}

OpenFolder::OpenFolder(const FilePath& path)
    : descriptor_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (!descriptor_) fail("open");
}

OpenFolder OpenFolder::makeFolder(const std::string& name) const {
    if (mkdirat(descriptor_.get(), name.c_str(), 0755) != 0) fail("mkdirat");
    FileDescriptor made(openat(descriptor_.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!made) fail("openat");
    return OpenFolder(std::move(made));
}

void OpenFolder::write(const std::string& name, std::size_t bytes) const {
    const FileDescriptor file(openat(descriptor_.get(), name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    if (!file) fail("openat");
    // Reserved rather than written, so that the number of blocks is final at once.
    if (bytes > 0 && posix_fallocate(file.get(), 0, static_cast<off_t>(bytes)) != 0) fail("posix_fallocate");
}

void makeWideLevels(const FilePath& root, int levels, int width, std::size_t nameLength) {
    const std::string name(nameLength, 's');
    OpenFolder folder(root);
    for (int level = 0; level < levels; ++level) {
        // The next level in the middle: whichever end a walk begins at, half of the others wait meanwhile.
        for (int i = 0; i < width / 2; ++i) static_cast<void>(folder.makeFolder(name + std::to_string(i)));
        OpenFolder next = folder.makeFolder("level");
        for (int i = width / 2; i < width; ++i)
            static_cast<void>(folder.makeFolder(name + std::to_string(i)));
        folder = std::move(next);
    }
}

DirectoryScanResult Measuring::operator()(const FilePath& root, std::stop_token stop) const {
    const SystemWallClock clock;
    ThreadPool pool(2);
    return LinuxTreeMeasurer(pool, clock, threads_).measure(root, std::move(stop));
}

std::int64_t Measuring::allocatedSize(const FilePath& item) const {
    const SystemWallClock clock;
    ThreadPool pool(1);
    return LinuxTreeMeasurer(pool, clock).allocatedSize(item);
}

std::string inChild(const std::function<std::string()>& body) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) fail("pipe2");
    const pid_t child = fork();
    if (child == 0) {
        std::string answer;
        try {
            answer = body();
        } catch (const std::exception& error) {
            answer = std::string("threw: ") + error.what();
        }
        const bool written =
            write(ends[1], answer.data(), answer.size()) == static_cast<ssize_t>(answer.size());
        _exit(written ? 0 : 1);
    }
    close(ends[1]);
    std::string answer = readAll(ends[0]);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the child ended with " << status;
    return answer;
}

}  // namespace cairnfield
