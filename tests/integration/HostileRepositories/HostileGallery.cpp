#include "integration/HostileRepositories/HostileGallery.h"

#include <filesystem>

namespace cairnfield {

namespace fs = std::filesystem;

namespace {

using Ground = HostileGround;

/// For traps that are sprung by way of a command which may well fail.
void run(const GitRepository& repository, const std::vector<std::string>& arguments) {
    (void)repository.tryGit(arguments);
}

void askForStatus(Ground& ground) {
    run(ground.project, {"status"});
}
void fetch(Ground& ground) {
    run(ground.project, {"fetch", "origin"});
}
void commitNothing(Ground& ground) {
    run(ground.project, {"commit", "--allow-empty", "--message", "Nothing"});
}
void stageAChange(Ground& ground) {
    ground.project.write("first.txt", "changed\n");
    run(ground.project, {"add", "first.txt"});
}

// Programs that are to say which files changed.

void watchFiles(Ground& ground) {
    ground.configure(ground.project, "core.fsmonitor", ground.program("fsmonitor"));
    ground.configure(ground.project, "core.untrackedCache", "true");
    ground.hook(ground.project / ".git/hooks", "fsmonitor-watchman");
}

void watchFilesOfOneWorktree(Ground& ground) {
    ground.configure(ground.project, "extensions.worktreeConfig", "true");
    ground.feature.git({"config", "--worktree", "core.fsmonitor", ground.program("fsmonitor")});
}

void watchFilesOfASubmodule(Ground& ground) {
    const GitRepository library = GitRepository::create(ground.home / "library");
    library.commitFile("library.txt");
    ground.project.addSubmodule(library, "library");
    ground.configure(GitRepository::at(ground.project / "library"), "core.fsmonitor",
                     ground.program("fsmonitor"));
}

void watchFilesThroughIncludedSettings(Ground& ground) {
    ground.project.commitFile("settings", "[core]\n\tfsmonitor = " + ground.program("fsmonitor") + "\n");
    ground.configure(ground.project, "include.path", "../settings");
}

void hideTheSettingsBehindAGitFile(Ground& ground) {
    watchFiles(ground);
    fs::rename((ground.project / ".git").bytes(), (ground.home / "elsewhere").bytes());
    ground.project.write(".git", "gitdir: " + (ground.home / "elsewhere").bytes() + "\n");
}

void hideTheSettingsBehindALink(Ground& ground) {
    watchFiles(ground);
    fs::rename((ground.project / ".git").bytes(), (ground.home / "elsewhere").bytes());
    fs::create_directory_symlink((ground.home / "elsewhere").bytes(), (ground.project / ".git").bytes());
}

void claimAnotherFolderForItsWorktree(Ground& ground) {
    watchFiles(ground);
    ground.home.write("private/letter.txt");
    ground.configure(ground.project, "core.worktree", (ground.home / "private").bytes());
}

void trackABareRepository(Ground& ground) {
    const GitRepository inner = GitRepository::create(ground.project / "fixtures/inner");
    inner.commitFile("file.txt");
    ground.configure(inner, "core.fsmonitor", ground.program("fsmonitor"));
    ground.configure(inner, "core.worktree", "..");
    for (const char* name : {"HEAD", "config", "objects", "refs", "index"})
        fs::rename((inner / (std::string(".git/") + name)).bytes(), (inner / name).bytes());
    fs::remove_all((inner / ".git").bytes());
    ground.project.commit("Fixtures");
    ground.settle(ground.project);
}
void workInTheBareRepository(Ground& ground) {
    run(GitRepository::at(ground.project / "fixtures/inner"), {"status"});
}

// Hooks.

void layEveryHook(Ground& ground) {
    for (const char* name : {"applypatch-msg",   "pre-applypatch",   "post-applypatch",
                             "pre-commit",       "pre-merge-commit", "prepare-commit-msg",
                             "commit-msg",       "post-commit",      "pre-rebase",
                             "post-checkout",    "post-merge",       "pre-push",
                             "pre-receive",      "update",           "proc-receive",
                             "post-receive",     "post-update",      "reference-transaction",
                             "push-to-checkout", "pre-auto-gc",      "post-rewrite",
                             "post-index-change"})
        ground.hook(ground.project / ".git/hooks", name);
}

void keepHooksAmongTheFiles(Ground& ground) {
    ground.hook(ground.project / "hooks", "pre-commit");
    ground.hook(ground.project / "hooks", "post-index-change");
    ground.project.commit("Hooks");
    ground.settle(ground.project);
    ground.configure(ground.project, "core.hooksPath", (ground.project / "hooks").bytes());
}

void waitForHousekeeping(Ground& ground) {
    for (const char* digit : {"1", "2", "3"})
        ground.project.write(".git/objects/17/" + std::string(38, digit[0]), "");
    ground.configure(ground.project, "gc.auto", "1");
    ground.configure(ground.project, "gc.autoDetach", "false");
    ground.hook(ground.project / ".git/hooks", "pre-auto-gc");
}
void keepHouse(Ground& ground) {
    run(ground.project, {"-c", "gc.auto=1", "gc", "--auto"});
}

// Programs that are to fetch.

void fetchThroughSSH(Ground& ground) {
    ground.loseATreeThatTheRemotePromised();
    ground.project.pretendRemoteIsAt("ssh://nowhere.invalid/project");
    ground.configure(ground.project, "core.sshCommand", ground.program("ssh"));
}

void fetchThroughAProxy(Ground& ground) {
    ground.loseATreeThatTheRemotePromised();
    ground.project.pretendRemoteIsAt("git://nowhere.invalid/project");
    ground.configure(ground.project, "core.gitProxy", ground.program("proxy"));
}

void fetchWithACommandOfTheRemotes(Ground& ground) {
    ground.loseATreeThatTheRemotePromised();
    ground.configure(ground.project, "remote.origin.uploadpack", ground.program("uploadpack"));
}

void fetchFromACommandForAnAddress(Ground& ground) {
    ground.loseATreeThatTheRemotePromised();
    ground.configure(ground.project, "protocol.allow", "always");
    ground.configure(ground.project, "protocol.ext.allow", "always");
    ground.project.pretendRemoteIsAt("ext::" + ground.program("ext"));
}

void rewriteAnHonestAddress(Ground& ground) {
    ground.loseATreeThatTheRemotePromised();
    ground.configure(ground.project, "protocol.ext.allow", "always");
    ground.configure(ground.project, "url.ext::" + ground.program("ext") + " .insteadOf",
                     ground.hub.path().bytes());
}

void listOtherObjects(Ground& ground) {
    const GitRepository lender = GitRepository::create(ground.home / "lender");
    lender.commitFile("lent.txt");
    ground.project.write(".git/objects/info/alternates", (lender / ".git/objects").bytes() + "\n");
    ground.configure(ground.project, "core.alternateRefsCommand", ground.program("alternates"));
}

// Programs for the contents of files.

void filterFiles(Ground& ground) {
    ground.project.write(".gitattributes", "*.txt filter=odd\n");
    ground.project.commit("Attributes");
    ground.settle(ground.project);
    for (const char* kind : {"clean", "smudge", "process"})
        ground.configure(ground.project, std::string("filter.odd.") + kind, ground.program(kind));
    ground.configure(ground.project, "filter.odd.required", "true");
}

void filterFilesByAttributesOfItsOwn(Ground& ground) {
    ground.project.write("attributes", "*.txt filter=odd\n");
    ground.project.commit("Attributes");
    ground.settle(ground.project);
    ground.configure(ground.project, "core.attributesFile", (ground.project / "attributes").bytes());
    ground.configure(ground.project, "filter.odd.clean", ground.program("clean"));
}

void compareFiles(Ground& ground) {
    ground.project.write(".gitattributes", "first.txt diff=odd\nsecond.txt diff=even\n");
    ground.project.commit("Attributes");
    ground.settle(ground.project);
    ground.configure(ground.project, "diff.external", ground.program("external"));
    ground.configure(ground.project, "diff.odd.textconv", ground.program("textconv"));
    ground.configure(ground.project, "diff.even.command", ground.program("command"));
    ground.project.write("first.txt", "changed\n");
    ground.project.write("second.txt", "changed\n");
}
void lookAtTheDifference(Ground& ground) {
    run(ground.project, {"diff"});
}

// The rest.

void updateASubmoduleByACommand(Ground& ground) {
    watchFilesOfASubmodule(ground);
    const GitRepository library = GitRepository::at(ground.project / "library");
    library.git({"config", "--unset", "core.fsmonitor"});
    library.commitFile("more.txt");
    ground.configure(ground.project, "submodule.library.update", "!" + ground.program("update"));
}
void updateSubmodules(Ground& ground) {
    run(ground.project, {"submodule", "update"});
}

void renameCommands(Ground& ground) {
    for (const char* command : {"status", "submodule", "worktree", "rev-parse", "remote", "rev-list",
                                "symbolic-ref", "show-ref", "branch", "merge-base", "state"})
        ground.configure(ground.project, std::string("alias.") + command, "!" + ground.program("alias"));
}
void useAnAlias(Ground& ground) {
    run(ground.project, {"state"});
}

void offerEditorsAndPagers(Ground& ground) {
    for (const char* key : {"core.pager", "pager.status", "pager.branch", "pager.remote", "pager.worktree",
                            "core.editor", "sequence.editor"})
        ground.configure(ground.project, key, ground.program("editor"));
}
void editHistory(Ground& ground) {
    run(ground.project, {"rebase", "--interactive", "HEAD~1"});
}

void signAndVerify(Ground& ground) {
    for (const char* key : {"commit.gpgSign", "tag.gpgSign", "log.showSignature", "push.gpgSign"})
        ground.configure(ground.project, key, "true");
    ground.configure(ground.project, "gpg.program", ground.program("gpg"));
}

const std::string shellName = "$(touch${IFS}left-by-a-shell)";

void nameThingsAsCommands(Ground& ground) {
    ground.project.git({"branch", shellName});
    ground.project.addRemote("`touch${IFS}left-by-a-shell`", ground.hub.path());
    ground.project.write(shellName);
    ground.project.write(";touch left-by-a-shell;.key");
    const GitRepository odd =
        ground.project.addWorktree(ground.home / ("root/" + shellName), shellName + "2");
    odd.lock(shellName);
}
void handANameToAShell(Ground& ground) {
    run(ground.project, {"-c", "alias.x=!: " + shellName, "x"});
}

}  // namespace

void layEverySetting(Ground& ground) {
    watchFilesOfASubmodule(ground);
    layEveryHook(ground);
    renameCommands(ground);
    offerEditorsAndPagers(ground);
    signAndVerify(ground);
    ground.configure(ground.project, "core.fsmonitor", ground.program("fsmonitor"));
    for (const char* key : {"core.sshCommand", "core.askPass", "credential.helper", "diff.external",
                            "core.alternateRefsCommand"})
        ground.configure(ground.project, key, ground.program("setting"));
}

const std::vector<HostileExhibit>& hostileExhibits() {
    static const std::vector<HostileExhibit> exhibits{
        {"WatchesFiles", watchFiles, nullptr},
        {"WatchesFilesOfOneWorktree", watchFilesOfOneWorktree, nullptr},
        {"WatchesFilesOfASubmodule", watchFilesOfASubmodule, nullptr},
        {"WatchesFilesThroughIncludedSettings", watchFilesThroughIncludedSettings, nullptr},
        {"HidesSettingsBehindAGitFile", hideTheSettingsBehindAGitFile, askForStatus},
        {"HidesSettingsBehindALink", hideTheSettingsBehindALink, nullptr},
        {"ClaimsAnotherFolderForItsWorktree", claimAnotherFolderForItsWorktree, askForStatus},
        {"TracksABareRepository", trackABareRepository, workInTheBareRepository},
        {"LaysEveryHook", layEveryHook, commitNothing},
        {"KeepsHooksAmongTheFiles", keepHooksAmongTheFiles, commitNothing},
        {"WaitsForHousekeeping", waitForHousekeeping, keepHouse},
        {"FetchesThroughSSH", fetchThroughSSH, nullptr},
        {"FetchesThroughAProxy", fetchThroughAProxy, nullptr},
        {"FetchesWithACommandOfTheRemotes", fetchWithACommandOfTheRemotes, nullptr},
        {"FetchesFromACommandForAnAddress", fetchFromACommandForAnAddress, nullptr},
        {"RewritesAnHonestAddress", rewriteAnHonestAddress, nullptr},
        {"ListsOtherObjects", listOtherObjects, fetch},
        {"FiltersFiles", filterFiles, stageAChange},
        {"FiltersFilesByAttributesOfItsOwn", filterFilesByAttributesOfItsOwn, stageAChange},
        {"ComparesFiles", compareFiles, lookAtTheDifference},
        {"UpdatesASubmoduleByACommand", updateASubmoduleByACommand, updateSubmodules},
        {"RenamesCommands", renameCommands, useAnAlias},
        {"OffersEditorsAndPagers", offerEditorsAndPagers, editHistory},
        {"SignsAndVerifies", signAndVerify, commitNothing},
        {"NamesThingsAsCommands", nameThingsAsCommands, handANameToAShell},
    };
    return exhibits;
}

}  // namespace cairnfield
