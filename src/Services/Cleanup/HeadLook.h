#pragma once
// Whether HEAD is where a cleanup left it. For the last look alone. Blocking, any thread. Throws
// std::system_error for what cannot be read.

#include "Models/Worktree.h"
#include "Services/Cleanup/GitAnswers.h"
#include "Services/Cleanup/RemovalRefusal.h"
#include "Services/Git/WorktreeGitFiles.h"

#include <optional>
#include <string>

namespace cairnfield {

/// Where HEAD has to be.
struct ExpectedHead {
    enum class Form {
        anywhere,  ///< its commit was never known
        unborn,
        commit,
    };

    Form form = Form::anywhere;
    std::string commit;
    bool isElsewhere = true;  ///< otherwise only what HEAD names holds the commit

    /// The commit that was preserved.
    [[nodiscard]] static ExpectedHead preserved(const std::optional<std::string>& commit);
    /// The state of the review, with nothing preserved since.
    [[nodiscard]] static ExpectedHead reviewed(const Worktree& worktree);
};

/// Asks git only where files do not hold it.
[[nodiscard]] std::optional<RemovalRefusal> refusalOfHead(const ExpectedHead& expected,
                                                          const Worktree& worktree,
                                                          const WorktreeGitFiles& files, GitAnswers& git);

}  // namespace cairnfield
