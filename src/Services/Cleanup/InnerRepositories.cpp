#include "Services/Cleanup/InnerRepositories.h"

#include "Services/Cleanup/GitSettings.h"
#include "Services/Cleanup/HiddenFiles.h"
#include "Services/Cleanup/PathsThatStay.h"
#include "Services/Git/GitWorktreeInspector.h"
#include "Services/Git/IgnoredFileClassifier.h"
#include "Shared/Files/Files.h"
#include "Shared/Paths/PathContainment.h"
#include "Shared/Text/Text.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <utility>

namespace cairnfield {

namespace {

namespace fs = std::filesystem;
using Objection = std::optional<std::string>;

constexpr const char* unreadable = "which cannot be read";

struct Repository {
    std::string path;  ///< relative to the worktree that is to go
    FilePath gitDirectory;
    std::optional<FilePath> workTree;
};

std::optional<struct stat> statusOf(const FilePath& path) {
    struct stat status{};
    if (lstat(path.c_str(), &status) != 0) return std::nullopt;
    return status;
}

bool exists(const FilePath& path) {
    return statusOf(path).has_value();
}

/// All links resolved. Absent unless what a folder's ".git" is or leads to lies in the same worktree.
std::optional<FilePath> gitDirectoryOf(const FilePath& folder, const FilePath& worktree) {
    constexpr std::string_view mark = "gitdir: ";
    const FilePath gitFile = folder.appending(".git");
    const std::optional<struct stat> status = statusOf(gitFile);
    if (!status) return std::nullopt;
    if (S_ISDIR(status->st_mode)) return resolvedPath(gitFile);
    if (!S_ISREG(status->st_mode)) return std::nullopt;
    const std::optional<std::string> content = readFile(gitFile);
    if (!content || !content->starts_with(mark)) return std::nullopt;
    const std::string target(trimmed(std::string_view(*content).substr(mark.size())));
    const std::optional<FilePath> resolved =
        resolvedPath(target.starts_with('/') ? FilePath(target) : folder.appending(target));
    if (!resolved || !isAtOrBelow(*resolved, worktree)) return std::nullopt;
    return resolved;
}

/// What tools leave behind in a checkout without being told to ignore it.
bool isByProduct(std::string_view path) {
    const std::vector<std::string_view> names = splitDroppingEmpty(path, '/');
    return std::ranges::any_of(names, [](std::string_view name) {
        return name.ends_with(".egg-info") ||
               IgnoredFileClassifier::classify(name) == IgnoredEntryClass::rebuildable;
    });
}

/// Whether a repository's log of HEAD tells of clones and checkouts alone. Then its tags are not somebody's
/// marks on commits of their own.
bool tellsOfNoWork(const FilePath& gitDirectory) {
    constexpr std::array<std::string_view, 5> harmless{"clone", "checkout:", "reset:", "fetch",
                                                       "pull: Fast-forward"};
    const std::optional<std::string> log = readFile(gitDirectory.appending("logs/HEAD"));
    if (!log || log->empty()) return false;
    return std::ranges::all_of(splitDroppingEmpty(*log, '\n'), [&harmless](std::string_view line) {
        const std::string_view deed = line.substr(std::min(line.find('\t'), line.size() - 1) + 1);
        return std::ranges::any_of(harmless,
                                   [deed](std::string_view word) { return deed.starts_with(word); });
    });
}

/// The judgement of one repository. Whatever is not yet known counts as harmless and is noted as a question.
class Judgement {
public:
    Judgement(const Repository& repository, GitAnswers& git) : repository_(repository), git_(git) {}

    /// The reason as the end of a sentence: "with commits that none of its remotes has".
    Objection objection() {
        const FilePath& directory = repository_.gitDirectory;
        const FilePath worktrees = directory.appending("worktrees");
        if (exists(directory.appending("commondir"))) return "which is a worktree of another";
        if (exists(worktrees) && !fs::is_empty(worktrees.bytes())) return "which has worktrees of its own";
        if (operationInProgress(directory) || exists(directory.appending("sequencer")))
            return "in which an operation is unfinished";
        const GitAnswer* list = ask({"config", "--list", "-z"});
        if (!list) return std::nullopt;
        if (!list->succeeded()) return unreadable;
        settings_ = GitSettings::parse(list->output);
        if (settings_.remoteURLs.empty()) return "which has no remote";
        Objection objection = objectionToCommits();
        if (!objection) objection = objectionToIndex();
        if (!objection && repository_.workTree) objection = objectionToNewFiles(*repository_.workTree);
        return objection;
    }

    /// Of the remotes, known when there was no objection.
    [[nodiscard]] const std::vector<std::string>& remoteURLs() const { return settings_.remoteURLs; }

private:
    const GitAnswer* ask(GitArguments arguments) {
        const FilePath folder = repository_.workTree.value_or(repository_.gitDirectory);
        // Named outright: where something is amiss, git would go on looking for a repository further up.
        GitArguments all{"--no-replace-objects", "--git-dir=" + repository_.gitDirectory.bytes()};
        if (repository_.workTree) all.push_back("--work-tree=" + repository_.workTree->bytes());
        all.insert(all.end(), std::make_move_iterator(arguments.begin()),
                   std::make_move_iterator(arguments.end()));
        return git_.to({folder, std::move(all)});
    }

    /// HEAD, all branches and the stash are among the references.
    Objection objectionToCommits() {
        if (settings_.isMirror && !repository_.workTree) return std::nullopt;
        GitArguments question{"rev-list", "--max-count=1", "--all", "--not", "--remotes"};
        if (tellsOfNoWork(repository_.gitDirectory)) question.emplace_back("--tags");
        const GitAnswer* answer = ask(std::move(question));
        if (!answer) return std::nullopt;
        if (!answer->succeeded()) return unreadable;
        if (!answer->output.empty()) return "with commits that none of its remotes has";
        return std::nullopt;
    }

    Objection objectionToIndex() {
        const FilePath& directory = repository_.gitDirectory;
        const auto entries = readGitIndex(directory, settings_.hasLongObjectNames ? 32 : 20);
        if (!entries) return unreadable;
        if (entries->empty()) return std::nullopt;
        const GitAnswer* staged = ask({"diff-index", "--cached", "--no-ext-diff", "--quiet", "HEAD", "--"});
        if (staged && staged->exitCode == 1) return "with changes that are staged";
        if (staged && !staged->succeeded()) return unreadable;
        if (!repository_.workTree) return std::nullopt;
        const std::optional<struct stat> index = statusOf(directory.appending("index"));
        if (!index) return unreadable;
        for (const GitIndexEntry& entry : *entries) {
            // One that is populated is a repository that is judged by itself.
            if (entry.isSubmodule()) continue;
            if (differsFromIndex(*repository_.workTree, entry, index->st_mtim))
                return "in which " + FilePath(entry.path).display() + " was changed";
        }
        return std::nullopt;
    }

    Objection objectionToNewFiles(const FilePath& workTree) {
        const GitAnswer* answer =
            ask({"ls-files", "--others", "--exclude-standard", "--directory", "--no-empty-directory", "-z"});
        if (!answer) return std::nullopt;
        if (!answer->succeeded()) return unreadable;
        for (const std::string_view path : splitDroppingEmpty(answer->output, '\0')) {
            // A repository in there is judged by itself.
            if (path.ends_with('/') && exists(workTree.appending(path).appending(".git"))) continue;
            if (isByProduct(path)) continue;
            return "in which " + FilePath(std::string(path)).display() + " is untracked";
        }
        return std::nullopt;
    }

    const Repository& repository_;
    GitAnswers& git_;
    GitSettings settings_;
};

RemovalRefusal refusal(const Repository& repository, const std::string& why) {
    return "Another repository lies inside it: " + FilePath(repository.path).display() + ", " + why + ".";
}

/// A remote on this disk, in the worktree that is to go.
std::optional<FilePath> remoteInside(const std::string& url, const Repository& repository,
                                     const FilePath& worktree) {
    const std::optional<FilePath> place =
        placeOfRemote(url, repository.workTree.value_or(repository.gitDirectory));
    if (!place) return std::nullopt;
    const std::optional<FilePath> resolved = resolvedPath(*place);
    const FilePath& there = resolved ? *resolved : place->standardized();
    if (!isAtOrBelow(there, worktree)) return std::nullopt;
    return there;
}

struct Chain {
    Repository repository;
    std::vector<FilePath> remotesInside;
};

/// Repositories whose remotes go with them must lead, one after the other, to one whose remotes do not.
std::optional<RemovalRefusal> refusalOfChains(std::vector<Chain> chains) {
    std::set<FilePath> settled;
    const auto isSettled = [&settled](const Chain& chain) {
        return std::ranges::all_of(chain.remotesInside,
                                   [&settled](const FilePath& place) { return settled.contains(place); });
    };
    const auto settle = [&](const Chain& chain) {
        if (!isSettled(chain)) return false;
        settled.insert(chain.repository.gitDirectory);
        if (chain.repository.workTree) settled.insert(*chain.repository.workTree);
        return true;
    };
    while (std::erase_if(chains, settle) > 0) {
    }
    if (chains.empty()) return std::nullopt;
    return refusal(chains.front().repository, "whose remote lies inside it as well");
}

}  // namespace

std::optional<RemovalRefusal> refusalOfInnerRepositories(const FilePath& worktree,
                                                         const std::vector<InnerRepository>& found,
                                                         GitAnswers& git) {
    const std::optional<FilePath> root = resolvedPath(worktree);
    if (found.empty() || !root) return std::nullopt;
    std::vector<Repository> repositories;
    std::set<FilePath> checkedOut;
    for (const InnerRepository& inner : found) {
        if (!inner.hasWorkTree) continue;
        const FilePath folder = root->appending(inner.path);
        const std::optional<FilePath> directory = gitDirectoryOf(folder, *root);
        if (!directory) return refusal({inner.path, {}, {}}, "which belongs to one elsewhere");
        checkedOut.insert(*directory);
        repositories.push_back({inner.path, *directory, folder});
    }
    for (const InnerRepository& inner : found) {
        const FilePath folder = root->appending(inner.path);
        if (!inner.hasWorkTree && !checkedOut.contains(folder))
            repositories.push_back({inner.path, folder, std::nullopt});
    }

    std::vector<Chain> chains;
    for (const Repository& repository : repositories) {
        Judgement judgement(repository, git);
        const Objection objection = judgement.objection();
        if (objection) return refusal(repository, *objection);
        Chain chain{repository, {}};
        for (const std::string& url : judgement.remoteURLs()) {
            std::optional<FilePath> place = remoteInside(url, repository, *root);
            if (place) chain.remotesInside.push_back(*std::move(place));
        }
        chains.push_back(std::move(chain));
    }
    return refusalOfChains(std::move(chains));
}

}  // namespace cairnfield
