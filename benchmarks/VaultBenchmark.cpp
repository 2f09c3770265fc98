// A file of 1 GB into the Recovery Vault, beside the distribution's own tools on the same disk. The vault
// writes a new file, syncs it, compares it with its source and records it; so the fair peer is "cp, sync,
// cmp", and the other two show what each of the promises costs. To hold: at most 1.10 of the fair peer's wall
// time.

#include "Platform/Linux/LinuxVolumeInformation.h"
#include "Services/Cleanup/RecoveryVaultService.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "SideBySide.h"
#include "support/SettableWallClock.h"
#include "support/TemporaryDirectory.h"

#include <sys/wait.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <spawn.h>
#include <stdexcept>
#include <unistd.h>

namespace {

using namespace cairnfield;

constexpr std::int64_t fileBytes = 1'000'000'000;
constexpr int rounds = 5;

/// Of bytes that no file system can make less of.
void makeLargeFile(const FilePath& file) {
    std::ofstream stream(file.bytes(), std::ios::binary);
    std::mt19937_64 random(4);
    std::vector<std::uint64_t> block(125'000);
    for (std::int64_t written = 0; written < fileBytes; written += 1'000'000) {
        for (std::uint64_t& word : block) word = random();
        stream.write(reinterpret_cast<const char*>(block.data()), 1'000'000);
    }
    if (!stream.flush()) throw std::runtime_error("the large file could not be written");
}

void run(std::vector<std::string> words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t child = -1;
    int status = 0;
    if (posix_spawnp(&child, pointers.front(), nullptr, nullptr, pointers.data(), environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0)
        throw std::runtime_error(words.front() + " failed");
}

enum class Peer : std::int64_t { copy, copyAndSync, copySyncAndCompare };

void archiveBesideTools(benchmark::State& state) {
    const TemporaryDirectory home;
    const FilePath worktree = home.makeDirectory("worktree");
    const FilePath source = worktree.appending("large.key");
    const FilePath copy = home.makeDirectory("copies").appending("large.key");
    makeLargeFile(source);
    run({"sync", source.bytes()});

    ThreadPool pool(2);
    const SettableWallClock clock;
    const LinuxVolumeInformation volumes;
    const ApplicationSupport support(home / "data", home / "config");
    RecoveryVaultService vault(pool, support, volumes, clock, 2 * fileBytes);
    IgnoredEntry file;
    file.name = "large.key";
    file.relativePath = "large.key";
    file.classification = IgnoredEntryClass::sensitive;
    file.sizeBytes = fileBytes;
    Worktree from;
    from.path = worktree;

    const auto removeCopies = [&] {
        std::filesystem::remove_all(support.recoveryVaultDirectory().bytes());
        std::filesystem::remove(copy.bytes());
    };
    const auto ours = [&] {
        if (runBlocking(vault.archive({file}, from, "project", UUID::make(), 90)).size() != 1)
            throw std::runtime_error("the file was not archived");
    };
    const auto tools = [&] {
        run({"cp", source.bytes(), copy.bytes()});
        if (state.range(0) >= std::int64_t(Peer::copyAndSync)) run({"sync", copy.bytes()});
        if (state.range(0) >= std::int64_t(Peer::copySyncAndCompare))
            run({"cmp", source.bytes(), copy.bytes()});
    };
    measureSideBySide(state, ours, tools, removeCopies);
}

}  // namespace

BENCHMARK(archiveBesideTools)
    ->Name("1 GB into the vault, against 0: cp, 1: cp and sync, 2: cp, sync and cmp")
    ->DenseRange(0, 2)
    ->Iterations(rounds)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
