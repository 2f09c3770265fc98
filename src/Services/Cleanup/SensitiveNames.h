#pragma once
// Which paths below the top of a worktree look sensitive, by their names alone. The names are those of
// IgnoredFileClassifier; what lies directly under the root is the review's own affair. Pure, any thread.

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace cairnfield {

/// The judgement of a path, directory by directory from the root down. A directory with a sensitive name
/// makes everything in it sensitive, and one with the name of build output is not looked into. In an ignored
/// directory the first such name decides; above it, where the directories hold tracked files, the last.
class SensitiveTrail {
public:
    enum class Standing {
        above,   ///< git lists something below the directory as ignored, not the directory
        inside,  ///< git lists it, or one above it
    };

    void enter(std::string_view directory, Standing standing);

    /// Nothing below counts, whatever its name.
    [[nodiscard]] bool isRebuildable() const { return state_ == State::rebuildable; }
    /// Of a file in the directory that was entered last.
    [[nodiscard]] bool counts(std::string_view file) const;

private:
    enum class State { byName, sensitive, rebuildable };

    State state_ = State::byName;
    bool isDecided_ = false;
};

/// The same for whole paths.
class SensitiveNames {
public:
    /// `ignoredPaths`: as git listed them, directories with a trailing slash.
    explicit SensitiveNames(const std::vector<std::string>& ignoredPaths);

    /// Of a file that is neither tracked nor directly under the root. One that git did not list and that lies
    /// in no directory that it listed, as one that has appeared since, is judged as if the first directory
    /// with the name of build output were ignored.
    [[nodiscard]] bool counts(std::string_view path) const;

private:
    [[nodiscard]] std::size_t endOfIgnoredDirectory(std::string_view path) const;

    std::unordered_set<std::string> directories_;
    std::unordered_set<std::string> files_;
};

}  // namespace cairnfield
