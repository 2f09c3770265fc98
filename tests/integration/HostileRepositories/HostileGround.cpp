#include "integration/HostileRepositories/HostileGallery.h"

#include <algorithm>
#include <chrono>
#include <filesystem>

namespace cairnfield {

namespace fs = std::filesystem;

namespace {

/// What a name in a repository makes whoever hands it to a shell leave behind, anywhere below the home.
constexpr const char* shellMark = "left-by-a-shell";

GitRepository projectWithRemote(const TemporaryDirectory& home, const GitRepository& hub) {
    const GitRepository project = GitRepository::create(home / "root/project");
    project.commitFile("first.txt");
    project.commitFile("second.txt");
    project.addRemote("origin", hub.path());
    project.publish();
    return project;
}

}  // namespace

HostileGround::HostileGround()
    : hub(GitRepository::createBare(home / "hub.git")),
      project(projectWithRemote(home, hub)),
      feature(project.addWorktree(home / "root/feature", "feature")),
      marks_(home.makeDirectory("marks")) {
    settle(project);
    settle(feature);
}

std::string HostileGround::program(const std::string& name) const {
    const FilePath script =
        home.write("programs/" + name, "#!/bin/sh\n: > '" + marks_.appending(name).bytes() + "'\nexit 1\n");
    fs::permissions(script.bytes(), fs::perms(0755));
    return script.bytes();
}

void HostileGround::hook(const FilePath& folder, const std::string& name) const {
    fs::create_directories(folder.bytes());
    fs::copy_file(program("hook-" + name), folder.appending(name).bytes());
}

void HostileGround::settle(const GitRepository& worktree) const {
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(24);
    for (const auto& entry : fs::recursive_directory_iterator(worktree.path().bytes())) {
        const bool isOurs = entry.path().native().find("/.git") == std::string::npos;
        if (isOurs && entry.is_regular_file()) fs::last_write_time(entry.path(), longAgo);
    }
    worktree.git({"update-index", "--refresh"});
}

void HostileGround::loseATreeThatTheRemotePromised() const {
    const std::string tree = project.git({"rev-parse", "HEAD^{tree}"});
    fs::remove((project / (".git/objects/" + tree.substr(0, 2) + "/" + tree.substr(2))).bytes());
    configure(project, "core.repositoryFormatVersion", "1");
    configure(project, "extensions.partialClone", "origin");
    configure(project, "remote.origin.promisor", "true");
}

std::vector<std::string> HostileGround::takeMarks() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(marks_.bytes())) {
        names.push_back(entry.path().filename());
        fs::remove(entry.path());
    }
    for (const auto& entry : fs::recursive_directory_iterator(home.path().bytes())) {
        if (entry.path().filename() == shellMark) names.push_back(entry.path());
    }
    for (const std::string& name : names) {
        if (name.ends_with(shellMark)) fs::remove(name);
    }
    std::ranges::sort(names);
    return names;
}

}  // namespace cairnfield
