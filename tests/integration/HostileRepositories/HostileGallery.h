#pragma once
// Repositories that try to have a program of theirs run by whoever looks at them. Each exhibit lays one kind
// of trap, and knows what springs it: without that, a trap that is not armed would pass for one that was
// avoided.

#include "support/GitRepository.h"
#include "support/TemporaryDirectory.h"

#include <string>
#include <vector>

namespace cairnfield {

/// Where an exhibit stands: a project with two commits and a remote, and its linked worktree "feature". Every
/// file looks as if it had long been left alone.
class HostileGround {
public:
    HostileGround();

    TemporaryDirectory home;
    GitRepository hub;
    GitRepository project;  ///< in home / "root"
    GitRepository feature;  ///< in home / "root"

    /// A program of the repository's, as an absolute path. It leaves a mark of that name.
    [[nodiscard]] std::string program(const std::string& name) const;
    /// A hook of that name in the folder.
    void hook(const FilePath& folder, const std::string& name) const;
    void configure(const GitRepository& repository, const std::string& key, const std::string& value) const {
        repository.git({"config", key, value});
    }
    /// From now on git finds nothing to do about these files without looking into them.
    void settle(const GitRepository& worktree) const;
    /// HEAD's tree is missing, and the settings say that the remote has promised it.
    void loseATreeThatTheRemotePromised() const;

    /// The names of the programs that have run since the last time.
    [[nodiscard]] std::vector<std::string> takeMarks() const;

private:
    FilePath marks_;
};

struct HostileExhibit {
    const char* name;
    void (*lay)(HostileGround& ground);
    /// What a person would do in a terminal; may fail. Null: looking is enough, in surroundings not made
    /// safe.
    void (*spring)(HostileGround& ground);
};

[[nodiscard]] const std::vector<HostileExhibit>& hostileExhibits();
/// Lays every trap that is but a setting or a hook, all in one repository.
void layEverySetting(HostileGround& ground);

}  // namespace cairnfield
