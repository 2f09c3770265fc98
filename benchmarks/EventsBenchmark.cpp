// Watching 100,000 directories: the time to find them and set the watches, beside a bare loop of
// inotify_add_watch over paths that are known already, and beside the same with a bare walk that finds them;
// and the memory that they take here. Warm. To hold: at most 3 times the bare walk's processor time, and 100
// bytes a directory.

#include "Platform/Linux/InotifyQueue.h"
#include "Platform/Linux/WatchWalk.h"
#include "SideBySide.h"
#include "support/TemporaryDirectory.h"

#include <sys/inotify.h>
#include <sys/stat.h>

#include <filesystem>
#include <limits>
#include <malloc.h>
#include <memory>
#include <stdexcept>

namespace {

using namespace cairnfield;

constexpr int projects = 1'000;
constexpr int foldersOfProject = 99;  // and the project itself
constexpr std::size_t directories = 1 + projects * (1 + foldersOfProject);
constexpr int rounds = 5;
constexpr std::uint32_t peersMask = IN_MODIFY | IN_ATTRIB | IN_CREATE | IN_DELETE | IN_MOVED_FROM |
                                    IN_MOVED_TO | IN_DELETE_SELF | IN_EXCL_UNLINK | IN_ONLYDIR;

class ProjectTree {
public:
    ProjectTree() {
        for (int project = 0; project < projects; ++project) {
            const std::string top = home_.path().bytes() + "/project-" + std::to_string(project);
            make(top);
            for (int folder = 0; folder < foldersOfProject; ++folder) {
                // Ten of them side by side, the others in chains below these.
                std::string path = top + "/folder-" + std::to_string(folder % 10);
                for (int depth = 1; depth <= folder / 10; ++depth) path += "/part-" + std::to_string(depth);
                make(path);
            }
        }
        if (paths_.size() + 1 != directories) throw std::runtime_error("not the tree that was meant");
        paths_.push_back(home_.path().bytes());
    }

    [[nodiscard]] const FilePath& root() const { return home_.path(); }
    [[nodiscard]] const std::vector<std::string>& paths() const { return paths_; }

private:
    void make(const std::string& path) {
        if (mkdir(path.c_str(), 0700) != 0) throw std::runtime_error("mkdir " + path);
        paths_.push_back(path);
    }

    TemporaryDirectory home_;
    std::vector<std::string> paths_;
};

const ProjectTree& tree() {
    static const ProjectTree made;
    return made;
}

struct Ours {
    WatchedForest forest{{tree().root()}, std::chrono::seconds(3)};
    WatchWalk walk{forest, std::numeric_limits<std::size_t>::max()};
};

std::unique_ptr<Ours> setUpOurs() {
    auto ours = std::make_unique<Ours>();
    ours->walk.attach(0);
    while (ours->walk.isBusy()) ours->walk.goOn();
    if (ours->forest.table.watched() != directories) throw std::runtime_error("not all are watched");
    return ours;
}

void addAs(const InotifyQueue& queue, const char* path) {
    if (queue.add(path, peersMask).watch == 0) throw std::runtime_error("no watch");
}

std::unique_ptr<InotifyQueue> setUpKnown() {
    auto queue = std::make_unique<InotifyQueue>();
    for (const std::string& path : tree().paths()) addAs(*queue, path.c_str());
    return queue;
}

std::unique_ptr<InotifyQueue> setUpFound() {
    auto queue = std::make_unique<InotifyQueue>();
    addAs(*queue, tree().root().c_str());
    for (const auto& entry : std::filesystem::recursive_directory_iterator(tree().root().bytes())) {
        if (entry.is_directory()) addAs(*queue, entry.path().c_str());
    }
    return queue;
}

/// As measureSideBySide, but that closing, which the kernel takes its time for, is not counted.
template <class Peer>
void besideOurs(benchmark::State& state, const Peer& peer) {
    static_cast<void>(tree());
    std::vector<Cost> ourCosts;
    std::vector<Cost> peerCosts;
    for (auto _ : state) {
        {
            decltype(peer()) kept;
            peerCosts.push_back(costOf([&] { kept = peer(); }));
        }
        std::unique_ptr<Ours> kept;
        ourCosts.push_back(costOf([&] { kept = setUpOurs(); }));
        state.SetIterationTime(ourCosts.back().wall);
    }
    for (const auto& [name, part] : {std::pair{"wall", &Cost::wall}, std::pair{"cpu", &Cost::processor}}) {
        const double ours = medianOf(ourCosts, part);
        const double peers = medianOf(peerCosts, part);
        state.counters[std::string("ours_") + name + "_ms"] = ours * 1e3;
        state.counters[std::string("peer_") + name + "_ms"] = peers * 1e3;
        state.counters[std::string(name) + "_ratio"] = ours / peers;
    }
}

void watchingBesideKnownPaths(benchmark::State& state) {
    besideOurs(state, setUpKnown);
}
BENCHMARK(watchingBesideKnownPaths)->UseManualTime()->Iterations(rounds)->Unit(benchmark::kMillisecond);

void watchingBesideBareWalk(benchmark::State& state) {
    besideOurs(state, setUpFound);
}
BENCHMARK(watchingBesideBareWalk)->UseManualTime()->Iterations(rounds)->Unit(benchmark::kMillisecond);

void memoryOfWatches(benchmark::State& state) {
    static_cast<void>(tree());
    malloc_trim(0);
    for (auto _ : state) {
        const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
        const std::unique_ptr<Ours> ours = setUpOurs();
        const std::size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
        state.counters["bytes_per_directory"] =
            static_cast<double>(after - before) / static_cast<double>(directories);
        state.counters["total_MB"] = static_cast<double>(after - before) / 1e6;
    }
}
BENCHMARK(memoryOfWatches)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
