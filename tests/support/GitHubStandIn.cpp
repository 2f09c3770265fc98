#include "support/GitHubStandIn.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace cairnfield {

namespace {

constexpr const char* token = "made-up-for-a-test";

void put(const FilePath& file, const std::string& content) {
    // In one step, since the service may be reading it.
    const std::string fresh = file.bytes() + ".new";
    std::ofstream(fresh, std::ios::binary) << content;
    std::filesystem::rename(fresh, file.bytes());
}

std::string readAll(const FilePath& file) {
    std::ostringstream content;
    content << std::ifstream(file.bytes(), std::ios::binary).rdbuf();
    return content.str();
}

}  // namespace

GitHubStandIn::GitHubStandIn(const FilePath& directory)
    : socket_(directory.appending("service")), stateFile_(directory.appending("service.json")) {
    const FilePath configuration = directory.appending("gh");
    std::filesystem::create_directories(configuration.bytes());
    put(configuration.appending("config.yml"), "http_unix_socket: " + socket_.bytes() + "\n");
    put(stateFile_, Json{{"login", "robin"}, {"tokens", {token}}, {"repositories", Json::object()}}.dump());
    environment_.emplace_back("GH_CONFIG_DIR", configuration.bytes());
    // With "CI" or "GITHUB_ACTIONS" gh tells somebody who is not signed in something else.
    for (const char* name : {"GH_HOST", "GH_REPO", "GITHUB_TOKEN", "GITHUB_ENTERPRISE_TOKEN",
                             "GH_ENTERPRISE_TOKEN", "GH_DEBUG", "CI", "GITHUB_ACTIONS"})
        environment_.emplace_back(name, std::nullopt);
    signIn("GH_TOKEN");

    std::array<int, 2> input{};
    std::array<int, 2> output{};
    if (pipe2(input.data(), O_CLOEXEC) != 0 || pipe2(output.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe for the stand-in");
    pid_ = fork();
    if (pid_ == 0) {
        dup2(input[0], 0);
        dup2(output[1], 1);
        execl("/usr/bin/python3", "python3", GITHUB_STAND_IN, socket_.c_str(), stateFile_.c_str(), nullptr);
        _exit(127);
    }
    close(input[0]);
    close(output[1]);
    input_.reset(input[1]);
    const FileDescriptor listening(output[0]);
    // To the end of its line: it must not find the pipe closed while it writes.
    for (char next = 0; next != '\n';)
        if (read(listening.get(), &next, 1) != 1) throw std::runtime_error("the stand-in does not start");
}

GitHubStandIn::~GitHubStandIn() {
    input_.reset();
    int status = 0;
    EXPECT_EQ(waitpid(pid_, &status, 0), pid_);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the stand-in failed";
    while (!environment_.empty()) environment_.pop_back();  // a variable that was set twice, in reverse
}

void GitHubStandIn::addRepository(const std::string& name, const std::string& defaultBranch) {
    change([&](Json& state) {
        state["repositories"][name] = {{"defaultBranch", defaultBranch}, {"pullRequests", Json::array()}};
    });
}

void GitHubStandIn::addPullRequest(const std::string& repository, const Json& pullRequest) {
    change([&](Json& state) {
        Json& list = state["repositories"][repository]["pullRequests"];
        list.insert(list.begin(), pullRequest);
    });
}

void GitHubStandIn::fault(const std::string& operation, int status, const std::string& body) {
    change([&](Json& state) { state["faults"][operation] = {{"status", status}, {"body", body}}; });
}

void GitHubStandIn::signIn(const std::string& variable) {
    environment_.emplace_back(variable, token);
}
void GitHubStandIn::signInWithRefusedToken(const std::string& variable) {
    environment_.emplace_back(variable, "refused");
}
void GitHubStandIn::signOut(const std::string& variable) {
    environment_.emplace_back(variable, std::nullopt);
}

Json GitHubStandIn::state() const {
    return Json::parse(readAll(stateFile_));
}

std::vector<Json> GitHubStandIn::takeRequests() {
    const FilePath file(stateFile_.bytes() + ".requests");
    std::istringstream lines(readAll(file));
    std::vector<Json> requests;
    for (std::string line; std::getline(lines, line);) requests.push_back(Json::parse(line));
    std::filesystem::remove(file.bytes());
    return requests;
}

void GitHubStandIn::change(const std::function<void(Json&)>& body) {
    Json changed = state();
    body(changed);
    put(stateFile_, changed.dump());
}

}  // namespace cairnfield
