#pragma once
// A remote with source files to clone from, for benchmarks that work on a project.

#include "support/GitRepository.h"
#include "support/TemporaryDirectory.h"

#include <string>

namespace cairnfield {

/// Makes "hub.git" in the home, with one commit of `directories` folders "moduleN", each with `filesInEach`
/// files "fileN.cpp" of 1.5 kB.
inline GitRepository makeHub(const TemporaryDirectory& home, int directories, int filesInEach) {
    const GitRepository seed = GitRepository::create(home / "seed");
    for (int directory = 0; directory < directories; ++directory) {
        for (int file = 0; file < filesInEach; ++file) {
            const std::string name =
                "module" + std::to_string(directory) + "/file" + std::to_string(file) + ".cpp";
            seed.write(name, "// " + name + "\n" + std::string(1'500, 'x') + "\n");
        }
    }
    seed.commit("Begin");
    seed.git({"clone", "--quiet", "--bare", seed.path().bytes(), (home / "hub.git").bytes()});
    return GitRepository::at(home / "hub.git");
}

}  // namespace cairnfield
