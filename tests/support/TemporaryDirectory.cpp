#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace cairnfield {

namespace fs = std::filesystem;

namespace {

void makeRemovable(const fs::path& directory) {
    std::error_code error;
    fs::permissions(directory, fs::perms::owner_all, fs::perm_options::add, error);
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        if (it->is_directory(error) && !it->is_symlink(error)) makeRemovable(it->path());
    }
}

}  // namespace

TemporaryDirectory::TemporaryDirectory() {
    std::string pattern = (fs::temp_directory_path() / "cairnfield-test-XXXXXX").native();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), "mkdtemp");
    path_ = FilePath(fs::canonical(pattern).native());
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code error;
    fs::remove_all(path_.bytes(), error);
    if (!error) return;
    makeRemovable(path_.bytes());
    fs::remove_all(path_.bytes(), error);
    EXPECT_FALSE(error) << path_.bytes() << ": " << error.message();
}

FilePath TemporaryDirectory::operator/(std::string_view relative) const {
    const FilePath inside = path_.appending(relative);
    fs::create_directories(fs::path(inside.bytes()).parent_path());
    return inside;
}

FilePath TemporaryDirectory::write(std::string_view relative, std::string_view content) const {
    const FilePath file = *this / relative;
    std::ofstream stream(file.bytes(), std::ios::binary | std::ios::trunc);
    stream << content;
    stream.close();
    EXPECT_TRUE(stream) << file.bytes();
    return file;
}

FilePath TemporaryDirectory::makeDirectory(std::string_view relative) const {
    const FilePath directory = path_.appending(relative);
    fs::create_directories(directory.bytes());
    return directory;
}

std::string contentOf(const FilePath& file) {
    std::ifstream stream(file.bytes(), std::ios::binary);
    EXPECT_TRUE(stream) << file.bytes();
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace cairnfield
