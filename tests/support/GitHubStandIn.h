#pragma once
// A hosting service of the test's own, for the real gh: no network is used, and no token is stored. As long
// as the object lives, this process's environment points gh to it, so make it before threads start. See
// github_stand_in.py for the form of its state.

#include "Models/JSON.h"
#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Paths/FilePath.h"
#include "support/ScopedEnvironment.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

class GitHubStandIn {
public:
    /// Keeps its files in `directory`, whose path is short enough for a socket. Returns when the service
    /// listens. Its one user is "robin", who is signed in to the public host.
    explicit GitHubStandIn(const FilePath& directory);
    ~GitHubStandIn();
    GitHubStandIn(const GitHubStandIn&) = delete;
    GitHubStandIn& operator=(const GitHubStandIn&) = delete;

    void addRepository(const std::string& name, const std::string& defaultBranch);
    /// Newest first, as the service lists them: the last one added stands in front.
    void addPullRequest(const std::string& repository, const Json& pullRequest);
    /// From now on `operation` is answered so, instead of as it should be.
    void fault(const std::string& operation, int status, const std::string& body);

    /// A token of this name signs in, or none does. For the public host: "GH_TOKEN"; for another one:
    /// "GH_ENTERPRISE_TOKEN".
    void signIn(const std::string& variable);
    void signInWithRefusedToken(const std::string& variable);
    void signOut(const std::string& variable);

    [[nodiscard]] Json state() const;
    /// What was asked since the last time.
    std::vector<Json> takeRequests();

    /// The distribution's gh.
    [[nodiscard]] static FilePath executable() { return FilePath("/usr/bin/gh"); }

private:
    void change(const std::function<void(Json&)>& body);

    const FilePath socket_;
    const FilePath stateFile_;
    std::list<ScopedEnvironment> environment_;
    FileDescriptor input_;  ///< the service ends when this closes
    int pid_ = -1;
};

}  // namespace cairnfield
