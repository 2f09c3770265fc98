#include "support/GitRepository.h"

#include "support/GitScript.h"

#include <sys/stat.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

namespace fs = std::filesystem;

namespace {

std::string joined(const std::vector<std::string>& arguments) {
    std::string text = "git";
    for (const std::string& argument : arguments) text += " " + argument;
    return text;
}

std::string withoutNewline(std::string text) {
    if (text.ends_with('\n')) text.pop_back();
    return text;
}

}  // namespace

GitRepository GitRepository::create(const FilePath& path) {
    fs::create_directories(path.bytes());
    const GitRepository repository(path);
    repository.git({"init", "--quiet"});
    return repository;
}

GitRepository GitRepository::createBare(const FilePath& path) {
    fs::create_directories(path.bytes());
    const GitRepository repository(path);
    repository.git({"init", "--quiet", "--bare"});
    return repository;
}

std::string GitRepository::git(const std::vector<std::string>& arguments) const {
    const GitOutcome outcome = runGit(path_, arguments);
    if (outcome.exitCode == 0) return withoutNewline(outcome.output);
    throw std::runtime_error(joined(arguments) + " ended with " + std::to_string(outcome.exitCode) + " in " +
                             path_.display() + ": " + outcome.output);
}

bool GitRepository::tryGit(const std::vector<std::string>& arguments) const {
    return runGit(path_, arguments).exitCode == 0;
}

void GitRepository::write(std::string_view relative, std::string_view content) const {
    const fs::path file = path_.appending(relative).bytes();
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << content;
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + file.native());
}

void GitRepository::writeLarge(std::string_view relative, std::int64_t bytes) const {
    const fs::path file = path_.appending(relative).bytes();
    fs::create_directories(file.parent_path());
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (descriptor < 0) throw std::system_error(errno, std::generic_category(), file.native());
    const int error = posix_fallocate(descriptor, 0, bytes);
    close(descriptor);
    if (error != 0) throw std::system_error(error, std::generic_category(), file.native());
}

void GitRepository::ignore(std::string_view pattern) const {
    const fs::path list = git({"rev-parse", "--path-format=absolute", "--git-path", "info/exclude"});
    fs::create_directories(list.parent_path());
    std::ofstream stream(list, std::ios::binary | std::ios::app);
    stream << pattern << '\n';
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + list.native());
}

std::string GitRepository::commit(std::string_view message) const {
    git({"add", "--all"});
    git({"commit", "--quiet", "--message", std::string(message)});
    return head();
}

std::string GitRepository::commitFile(std::string_view relative, std::string_view content) const {
    write(relative, content);
    return commit("Write " + std::string(relative));
}

std::string GitRepository::head() const {
    return git({"rev-parse", "HEAD"});
}

GitRepository GitRepository::addWorktree(const FilePath& path, const std::string& branch) const {
    git({"worktree", "add", "--quiet", "--no-track", "-b", branch, "--", path.bytes(), "HEAD"});
    return GitRepository(path);
}

GitRepository GitRepository::addDetachedWorktree(const FilePath& path) const {
    git({"worktree", "add", "--quiet", "--detach", "--", path.bytes(), "HEAD"});
    return GitRepository(path);
}

void GitRepository::lock(std::string_view reason) const {
    std::vector<std::string> arguments{"worktree", "lock"};
    if (!reason.empty()) arguments.insert(arguments.end(), {"--reason", std::string(reason)});
    arguments.insert(arguments.end(), {"--", path_.bytes()});
    git(arguments);
}

GitRepository GitRepository::cloneTo(const FilePath& path) const {
    git({"clone", "--quiet", "--", path_.bytes(), path.bytes()});
    return GitRepository(path);
}

void GitRepository::addRemote(const std::string& name, const FilePath& repository) const {
    git({"remote", "add", name, repository.bytes()});
}

void GitRepository::publish(const std::string& remote) const {
    git({"push", "--quiet", "--set-upstream", remote, "HEAD"});
}

void GitRepository::pretendRemoteIsAt(const std::string& url, const std::string& remote) const {
    git({"remote", "set-url", remote, url});
}

void GitRepository::commitConflictOn(const std::string& otherBranch) const {
    commitFile("conflict.txt", "the line both agree on\n");
    git({"branch", otherBranch});
    commitFile("conflict.txt", "as we see it\n");
    git({"checkout", "--quiet", "--detach", otherBranch});
    commitFile("conflict.txt", "as they see it\n");
    git({"branch", "--force", otherBranch, "HEAD"});
    git({"checkout", "--quiet", "-"});
}

void GitRepository::stopAtConflict() const {
    commitConflictOn("theirs");
    if (tryGit({"merge", "theirs"})) throw std::runtime_error("the merge met no conflict");
}

void GitRepository::stopIn(GitOperationInProgress operation) const {
    commitFile("first.txt");
    commitFile("second.txt");
    bool ended = false;
    switch (operation) {
        case GitOperationInProgress::merge:
            git({"branch", "aside", "HEAD~1"});
            git({"checkout", "--quiet", "--detach", "aside"});
            commitFile("aside.txt");
            git({"branch", "--force", "aside", "HEAD"});
            git({"checkout", "--quiet", "-"});
            ended = !tryGit({"merge", "--no-commit", "--no-ff", "aside"});
            break;
        case GitOperationInProgress::rebase:
            ended = tryGit({"rebase", "--exec", "false", "HEAD~1"});
            break;
        case GitOperationInProgress::cherryPick:
            commitConflictOn("theirs");
            ended = tryGit({"cherry-pick", "theirs"});
            git({"checkout", "--quiet", "--ours", "conflict.txt"});
            git({"add", "conflict.txt"});
            break;
        case GitOperationInProgress::revert:
            commitConflictOn("theirs");
            ended = tryGit({"revert", "--no-edit", "HEAD~1"});
            git({"checkout", "--quiet", "--ours", "conflict.txt"});
            git({"add", "conflict.txt"});
            break;
        case GitOperationInProgress::bisect:
            git({"bisect", "start"});
            git({"bisect", "bad", "HEAD"});
            break;
    }
    if (ended) throw std::runtime_error("the operation did not stop half-way");
}

void GitRepository::stopInRebaseByPatches() const {
    commitConflictOn("theirs");
    if (tryGit({"rebase", "--apply", "theirs"})) throw std::runtime_error("the rebase met no conflict");
    git({"checkout", "--quiet", "--ours", "conflict.txt"});
    git({"add", "conflict.txt"});
}

void GitRepository::addSubmodule(const GitRepository& source, const std::string& relative) const {
    git({"-c", "protocol.file.allow=always", "submodule", "--quiet", "add", "--", source.path().bytes(),
         relative});
    commit("Add the submodule " + relative);
}

void GitRepository::setLastTouched(Date date) const {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date.time_since_epoch());
    const timespec time{seconds.count(), 0};
    const timespec times[2] = {time, time};
    for (const char* place : {".git/HEAD", ".git/index", ".git", "."}) {
        const FilePath item = path_.appending(place);
        // In a linked worktree and in a bare repository some of these do not exist.
        if (utimensat(AT_FDCWD, item.c_str(), times, 0) == 0 || errno == ENOENT || errno == ENOTDIR) continue;
        throw std::system_error(errno, std::generic_category(), item.bytes());
    }
}

}  // namespace cairnfield
