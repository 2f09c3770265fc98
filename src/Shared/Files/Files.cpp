#include "Shared/Files/Files.h"

#include "Shared/Concurrency/FileDescriptor.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

namespace {

[[noreturn]] void fail(int code, const FilePath& path) {
    throw std::system_error(code, std::generic_category(), path.display());
}

bool isDirectory(const FilePath& path) {
    struct stat status{};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void syncDirectory(const FilePath& directory) {
    const FileDescriptor folder(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) fsync(folder.get());
}

}  // namespace

std::optional<std::string> readFile(const FilePath& file) {
    // Opening a pipe without a writer would otherwise wait for one.
    const FileDescriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor) {
        if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
        fail(errno, file);
    }
    struct stat status{};
    if (fstat(descriptor.get(), &status) != 0) fail(errno, file);
    if (S_ISDIR(status.st_mode)) fail(EISDIR, file);
    if (!S_ISREG(status.st_mode)) fail(EINVAL, file);

    std::string bytes;
    std::array<char, 16'384> buffer{};
    while (true) {
        const ssize_t count = read(descriptor.get(), buffer.data(), buffer.size());
        if (count == 0) return bytes;
        if (count > 0) {
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            fail(errno, file);
        }
    }
}

void ensureDirectory(const FilePath& directory) {
    if (isDirectory(directory)) return;
    const FilePath parent = directory.parent();
    if (!parent.isEmpty() && parent != directory) ensureDirectory(parent);
    if (mkdir(directory.c_str(), 0700) == 0) {
        // Otherwise a power cut could take the new folder away together with a file that was synced inside
        // it.
        syncDirectory(parent.isEmpty() ? FilePath(".") : parent);
    } else if (errno != EEXIST) {
        fail(errno, directory);
    } else if (!isDirectory(directory)) {
        fail(ENOTDIR, directory);
    }
}

}  // namespace cairnfield
