#pragma once
// Sizes directories as a test says, and remembers what it was asked. Single files are weighed for real. One
// thread at a time.

#include "Services/FileSystem/DirectoryScanning.h"
#include "Shared/Errors/CairnfieldError.h"

#include <sys/stat.h>

#include <cerrno>
#include <map>
#include <system_error>
#include <vector>

namespace cairnfield {

class FakeDirectoryScanner final : public DirectoryScanning {
public:
    std::map<FilePath, std::int64_t> sizes;   ///< what a walk finds; elsewhere it throws PathMissing
    std::map<FilePath, std::int64_t> cached;  ///< what an earlier walk found
    bool isEstimated = true;                  ///< of every result
    std::vector<FilePath> walked;
    std::vector<FilePath> askedOfCache;

    Task<DirectoryScanResult> size(FilePath url, bool useCache) override {
        if (useCache && cached.contains(url)) co_return resultFor(url, cached.at(url));
        walked.push_back(url);
        if (!sizes.contains(url)) throw CairnfieldError(CairnfieldError::PathMissing{url.bytes()});
        co_return resultFor(url, sizes.at(url));
    }

    Task<std::optional<DirectoryScanResult>> cachedResult(FilePath url) override {
        askedOfCache.push_back(url);
        if (!cached.contains(url)) co_return std::nullopt;
        co_return resultFor(url, cached.at(url));
    }

    [[nodiscard]] std::int64_t allocatedSize(const FilePath& item) override {
        struct stat facts{};
        if (lstat(item.c_str(), &facts) != 0)
            throw std::system_error(errno, std::generic_category(), item.bytes());
        return std::int64_t{facts.st_blocks} * 512;
    }

private:
    [[nodiscard]] DirectoryScanResult resultFor(const FilePath& url, std::int64_t bytes) const {
        DirectoryScanResult result;
        result.url = url;
        result.totalBytes = bytes;
        result.isEstimated = isEstimated;
        return result;
    }
};

}  // namespace cairnfield
