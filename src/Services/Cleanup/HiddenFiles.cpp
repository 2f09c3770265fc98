#include "Services/Cleanup/HiddenFiles.h"

#include "Shared/Concurrency/FileDescriptor.h"

#include <openssl/evp.h>

#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

namespace {

[[noreturn]] void fail(const FilePath& file) {
    throw std::system_error(errno, std::generic_category(), file.display());
}

/// The name that git would give the content, in raw bytes.
class ObjectName {
public:
    ObjectName(std::size_t objectBytes, std::int64_t size) : context_(EVP_MD_CTX_new(), EVP_MD_CTX_free) {
        if (!context_) throw std::bad_alloc();
        check(EVP_DigestInit_ex(context_.get(), objectBytes == 32 ? EVP_sha256() : EVP_sha1(), nullptr));
        const std::string header = "blob " + std::to_string(size);
        add({header.c_str(), header.size() + 1});
    }

    void add(std::string_view bytes) { check(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size())); }

    std::string bytes() {
        std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
        unsigned length = 0;
        check(EVP_DigestFinal_ex(context_.get(), digest.data(), &length));
        return {reinterpret_cast<const char*>(digest.data()), length};
    }

private:
    static void check(int result) {
        if (result != 1) throw std::system_error(ENOTSUP, std::generic_category(), "digest");
    }

    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context_;
};

bool isOlder(const timespec& some, const timespec& other) {
    return some.tv_sec != other.tv_sec ? some.tv_sec < other.tv_sec : some.tv_nsec < other.tv_nsec;
}

/// In 32 bits, as the index keeps everything.
std::uint32_t low(auto value) {
    return static_cast<std::uint32_t>(value);
}

/// By what git compares. A file as young as the index it reads in any case.
bool looksUnchangedToGit(const struct stat& file, const GitIndexEntry& entry, const timespec& indexModified) {
    return low(file.st_size) == entry.size && low(file.st_ino) == entry.inode &&
           low(file.st_mtim.tv_sec) == entry.modifiedSeconds &&
           low(file.st_ctim.tv_sec) == entry.changedSeconds && file.st_mtim.tv_sec < indexModified.tv_sec;
}

bool looksAsCompared(const struct stat& file, const GitIndexEntry& entry, const timespec& indexModified) {
    return low(file.st_size) == entry.size && low(file.st_ino) == entry.inode &&
           low(file.st_mtim.tv_sec) == entry.modifiedSeconds &&
           low(file.st_mtim.tv_nsec) == entry.modifiedNanoseconds &&
           low(file.st_ctim.tv_sec) == entry.changedSeconds &&
           low(file.st_ctim.tv_nsec) == entry.changedNanoseconds && isOlder(file.st_mtim, indexModified);
}

std::string nameOfLink(const FilePath& link, std::size_t objectBytes) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(link.c_str(), target.data(), target.size());
    if (length < 0) fail(link);
    ObjectName name(objectBytes, length);
    name.add({target.data(), static_cast<std::size_t>(length)});
    return name.bytes();
}

std::string nameOfFile(const FilePath& file, std::int64_t size, std::size_t objectBytes) {
    const FileDescriptor descriptor(open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!descriptor) fail(file);
    ObjectName name(objectBytes, size);
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t count = read(descriptor.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(file);
        if (count == 0) return name.bytes();
        name.add({buffer.data(), static_cast<std::size_t>(count)});
    }
}

}  // namespace

bool changedUnseen(const FilePath& worktree, const GitIndexEntry& entry, const timespec& indexModified) {
    struct stat status{};
    if (lstat(worktree.appending(entry.path).c_str(), &status) != 0) return false;
    return looksUnchangedToGit(status, entry, indexModified) &&
           differsFromIndex(worktree, entry, indexModified);
}

bool differsFromIndex(const FilePath& worktree, const GitIndexEntry& entry, const timespec& indexModified) {
    const FilePath file = worktree.appending(entry.path);
    struct stat status{};
    if (lstat(file.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return false;
        fail(file);
    }
    if (S_ISDIR(status.st_mode)) return !std::filesystem::is_empty(file.bytes());
    if (looksAsCompared(status, entry, indexModified)) return false;
    if (S_ISLNK(status.st_mode) && entry.isLink())
        return nameOfLink(file, entry.object.size()) != entry.object;
    if (!S_ISREG(status.st_mode) || entry.isLink() || entry.isLeftOutFolder()) return true;
    return nameOfFile(file, status.st_size, entry.object.size()) != entry.object;
}

}  // namespace cairnfield
