#include "Services/Cleanup/OwnReferences.h"

#include "Shared/Files/Files.h"
#include "Shared/Text/Text.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace cairnfield {

namespace {

namespace fs = std::filesystem;

struct OwnReference {
    std::string name;
    std::string object;  ///< empty when what stands there is no object's name
};

bool isObjectName(std::string_view text) {
    return (text.size() == 40 || text.size() == 64) &&
           text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

/// Absent for a reference to a reference, which holds nothing by itself, and for a file that is gone.
std::optional<OwnReference> referenceIn(const FilePath& file, std::string name) {
    const std::optional<std::string> content = readFile(file);
    if (!content || content->starts_with("ref:")) return std::nullopt;
    const std::string_view value = trimmed(*content);
    return OwnReference{std::move(name), isObjectName(value) ? std::string(value) : std::string()};
}

/// What git writes itself, and overwrites without asking.
bool isANoteOfGit(std::string_view name) {
    constexpr std::array<std::string_view, 2> beginnings{"BISECT_", "NOTES_MERGE_"};
    return name == "HEAD" || name == "AUTO_MERGE" || name.ends_with("_HEAD") ||
           std::ranges::any_of(beginnings, [name](std::string_view part) { return name.starts_with(part); });
}

/// By its name, it can be a reference beside HEAD.
bool isNamedLikeHead(std::string_view name) {
    return std::ranges::all_of(name, [](char c) { return (c >= 'A' && c <= 'Z') || c == '_' || c == '-'; });
}

void addThoseBesideHead(const FilePath& own, std::vector<OwnReference>& references) {
    for (const fs::directory_entry& entry : fs::directory_iterator(own.bytes())) {
        const std::string name = entry.path().filename().native();
        if (!isNamedLikeHead(name) || isANoteOfGit(name) || !entry.is_regular_file()) continue;
        std::optional<OwnReference> reference = referenceIn(own.appending(name), name);
        // Plain text of git's, such as the beginning of a message, has names of this form too.
        if (reference && !reference->object.empty()) references.push_back(*std::move(reference));
    }
}

void addThoseBelow(const FilePath& own, std::vector<OwnReference>& references) {
    const fs::path top = own.appending("refs").bytes();
    if (!fs::exists(fs::symlink_status(top))) return;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(top)) {
        if (entry.is_directory() || entry.path().extension() == ".lock") continue;
        const std::string name = entry.path().lexically_relative(own.bytes()).native();
        std::optional<OwnReference> reference = referenceIn(own.appending(name), name);
        if (reference) references.push_back(*std::move(reference));
    }
}

std::vector<OwnReference> referencesInFiles(const FilePath& own) {
    std::vector<OwnReference> references;
    addThoseBelow(own, references);
    addThoseBesideHead(own, references);
    std::ranges::sort(references, {}, &OwnReference::name);
    return references;
}

/// As git lists them; one without a name and an object where it does not.
std::vector<OwnReference> referencesOfGit(const Worktree& worktree, GitAnswers& git) {
    const GitAnswer* answer = git.to({worktree.path,
                                      {"for-each-ref", "--format=%(objectname) %(refname)", "refs/worktree",
                                       "refs/bisect", "refs/rewritten"}});
    if (!answer) return {};
    if (!answer->succeeded()) return {OwnReference{}};
    std::vector<OwnReference> references;
    for (const std::string_view line : splitDroppingEmpty(answer->output, '\n')) {
        const std::size_t blank = line.find(' ');
        if (blank == std::string_view::npos || !isObjectName(line.substr(0, blank))) return {OwnReference{}};
        references.push_back({std::string(line.substr(blank + 1)), std::string(line.substr(0, blank))});
    }
    return references;
}

/// Asked from where the repository is, "all" are its references, and none of another worktree's own. What
/// HEAD was at is held as well: it is judged, or preserved, by itself.
GitQuestion whetherHeldElsewhere(const Worktree& worktree, const std::string& object) {
    GitArguments arguments{"rev-list", "--objects", "--filter=tree:0", "--max-count=1", object,
                           "--not",    "--all"};
    if (worktree.headSHA) arguments.push_back(*worktree.headSHA);
    return {worktree.repositoryRoot, std::move(arguments)};
}

}  // namespace

std::optional<RemovalRefusal> refusalOfOwnReferences(const Worktree& worktree, const WorktreeGitFiles& files,
                                                     GitAnswers& git) {
    using enum RemovalRefusal::Kind;
    const std::vector<OwnReference> references =
        keepsReferencesElsewhere(files) ? referencesOfGit(worktree, git) : referencesInFiles(files.own);
    for (const OwnReference& reference : references) {
        const std::string shown = "Its own reference " + FilePath(reference.name).display();
        if (reference.name.empty())
            return RemovalRefusal("Its own references could not be read.", unreadable);
        if (reference.object.empty()) return RemovalRefusal(shown + " could not be read.", unreadable);
        const GitAnswer* answer = git.to(whetherHeldElsewhere(worktree, reference.object));
        if (!answer) continue;
        if (!answer->succeeded())
            return RemovalRefusal(shown + " could not be compared with the repository's.", unreadable);
        if (!answer->output.empty()) return shown + " holds what nothing else holds.";
    }
    return std::nullopt;
}

}  // namespace cairnfield
