#include "driver/Commands.h"

#include "Services/Git/GitPorcelainParser.h"
#include "driver/CleanupCommands.h"
#include "driver/ModelCommands.h"
#include "driver/Program.h"
#include "driver/StorageCommands.h"

#include <charconv>
#include <iostream>
#include <iterator>
#include <map>

namespace cairnfield {

namespace {

using Command = std::function<void(const Settle&, JsonLines&)>;
using ModelWork = std::function<Task<>(AppModel&, JsonLines&)>;

/// A command that needs the program: starts it, does the work, ends it.
Command onModel(ModelWork work) {
    return [work = std::move(work)](const Settle& settle, JsonLines& lines) {
        Program program(settle, lines);
        program.run([&](AppModel& model) { return work(model, lines); });
    };
}

UUID takeIdentifier(Words& words) {
    const std::string word = words.take("ID");
    const std::optional<UUID> id = UUID::parse(word);
    if (!id) throw WrongWords("not an identifier: " + word);
    return *id;
}

/// The words that are left name one worktree.
WorktreeWords worktreeWords(Words& words) {
    WorktreeWords which;
    which.roots = words.takePathsAfter("--root");
    which.worktree = words.takePath("WORKTREE");
    return which;
}

Command addCommand(Words words) {
    std::vector<FilePath> roots = words.takePaths("ROOT");
    return onModel([roots](AppModel& model, JsonLines& lines) { return addFolders(model, lines, roots); });
}

Command foldersCommand(const Words& words) {
    words.end();
    return onModel([](AppModel& model, JsonLines& lines) { return listFolders(model, lines); });
}

Command removeCommand(Words words) {
    const UUID id = takeIdentifier(words);
    words.end();
    return onModel([id](AppModel& model, JsonLines& lines) { return removeFolder(model, lines, id); });
}

Command scanCommand(Words words) {
    const bool fresh = words.takeOption("--fresh");
    FilePath path = words.takePath("PATH");
    return onModel([path, fresh](AppModel& model, JsonLines& lines) {
        return scanDirectory(model, lines, path, fresh);
    });
}

Command inspectCommand(Words words) {
    InspectWords inspect;
    for (const std::string& pin : words.takeValues("--pin")) inspect.pins.push_back(absolutePath(pin));
    inspect.sizes = words.takeOption("--sizes");
    inspect.pullRequests = words.takeOption("--pull-requests");
    inspect.roots = words.takePaths("ROOT");
    return onModel(
        [inspect](AppModel& model, JsonLines& lines) { return inspectWorktrees(model, lines, inspect); });
}

Command storageCommand(const Words& words) {
    words.end();
    return onModel([](AppModel& model, JsonLines& lines) { return showStorage(model, lines); });
}

Command monitorCommand(Words words) {
    const std::vector<std::string> seconds = words.takeValues("--seconds");
    MonitorWords monitor{.roots = words.takePaths("ROOT")};
    if (seconds.size() != 1) throw WrongWords("monitor needs one --seconds N");
    int number = 0;
    const char* const end = seconds[0].data() + seconds[0].size();
    const auto [rest, error] = std::from_chars(seconds[0].data(), end, number);
    if (error != std::errc{} || rest != end || number < 0)
        throw WrongWords("not a number of seconds: " + seconds[0]);
    monitor.duration = std::chrono::seconds(number);
    return [monitor](const Settle& settle, JsonLines& lines) {
        Program program(settle, lines);
        program.run([&](AppModel& model) { return monitorFolders(program, model, lines, monitor); });
    };
}

Command preflightCommand(Words words) {
    const WorktreeWords which = worktreeWords(words);
    return onModel(
        [which](AppModel& model, JsonLines& lines) { return preflightWorktree(model, lines, which); });
}

Command cleanCommand(Words words) {
    CleanWords clean;
    clean.message = words.takeValue("--message");
    if (const std::optional<std::string> pause = words.takeValue("--pause")) {
        clean.pause = cleanupStageFromRawValue(*pause);
        if (!clean.pause) throw WrongWords("no stage is called " + *pause);
    }
    clean.noUntracked = words.takeOption("--no-untracked");
    clean.noVault = words.takeOption("--no-vault");
    clean.noNestedVault = words.takeOption("--no-nested-vault");
    clean.pullRequest = words.takeOption("--pull-request");
    clean.which = worktreeWords(words);
    return [clean](const Settle& settle, JsonLines& lines) {
        ProgressLines progress(lines, clean.pause);
        Program program(settle, lines,
                        [&progress](const CleanupProgress& reported) { progress.tell(reported); });
        program.run([&](AppModel& model) { return cleanWorktree(model, lines, clean, progress); });
    };
}

Command receiptsCommand(const Words& words) {
    words.end();
    return onModel([](AppModel& model, JsonLines& lines) { return listReceipts(model, lines); });
}

Command vaultCommand(const Words& words) {
    words.end();
    return onModel([](AppModel& model, JsonLines& lines) { return listVault(model, lines); });
}

Command vaultRestoreCommand(Words words) {
    const UUID id = takeIdentifier(words);
    const FilePath destination = words.takePath("DEST");
    return onModel([id, destination](AppModel& model, JsonLines& lines) {
        return restoreFromVault(model, lines, id, destination);
    });
}

Command vaultRemoveCommand(Words words) {
    const UUID id = takeIdentifier(words);
    words.end();
    return onModel([id](AppModel& model, JsonLines& lines) { return removeFromVault(model, lines, id); });
}

Command integrationsCommand(const Words& words) {
    words.end();
    return onModel([](AppModel& model, JsonLines& lines) { return showIntegrations(model, lines); });
}

Json parsed(const std::string& what, const std::string& bytes) {
    if (what == "status") return GitPorcelainParser::parseStatus(bytes);
    if (what == "worktree-list") return {{"entries", GitPorcelainParser::parseWorktreeList(bytes)}};
    return {{"submodulesNeedReview", GitPorcelainParser::submodulesNeedReview(bytes)}};
}

Command parseCommand(Words words) {
    std::string what = words.take("status, worktree-list or submodules");
    words.end();
    if (what != "status" && what != "worktree-list" && what != "submodules")
        throw WrongWords("nothing to parse is called " + what);
    return [what](const Settle&, JsonLines& lines) {
        const std::string bytes(std::istreambuf_iterator<char>(std::cin), {});
        lines.print("result", parsed(what, bytes));
    };
}

}  // namespace

Command commandFrom(Words words) {
    static const std::map<std::string, std::function<Command(Words)>> commands{
        {"add", addCommand},
        {"folders", foldersCommand},
        {"remove", removeCommand},
        {"scan", scanCommand},
        {"inspect", inspectCommand},
        {"preflight", preflightCommand},
        {"clean", cleanCommand},
        {"receipts", receiptsCommand},
        {"vault", vaultCommand},
        {"vault-restore", vaultRestoreCommand},
        {"vault-remove", vaultRemoveCommand},
        {"integrations", integrationsCommand},
        {"parse", parseCommand},
        {"storage", storageCommand},
        {"monitor", monitorCommand},
    };
    const std::string name = words.take("a command");
    const auto found = commands.find(name);
    if (found == commands.end()) throw WrongWords("unknown command: " + name);
    return found->second(std::move(words));
}

std::string usage() {
    return "Usage: cairnfield-driver [--set KEY=JSON]... COMMAND\n"
           "  add ROOT...\n"
           "  folders\n"
           "  remove ID\n"
           "  scan PATH [--fresh]\n"
           "  inspect ROOT... [--pin PATH]... [--sizes] [--pull-requests]\n"
           "  preflight WORKTREE --root ROOT...\n"
           "  clean WORKTREE --root ROOT... [--no-untracked] [--no-vault] [--no-nested-vault] "
           "[--pull-request]\n"
           "        [--message TEXT] [--pause STAGE]\n"
           "  receipts\n"
           "  vault\n"
           "  vault-restore ID DEST\n"
           "  vault-remove ID\n"
           "  integrations\n"
           "  storage\n"
           "  monitor ROOT... --seconds N\n"
           "  parse status|worktree-list|submodules\n";
}

}  // namespace cairnfield
