// Finding the repositories under a home-like tree, beside a bare walk that does no more than it must:
// directories opened by name on their parent's descriptor, one test for ".git" in each, nothing kept but a
// count. Warm. To hold: at most 1.5 of the bare walk's time.

#include "Services/Git/RepositoryDiscovering.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "SideBySide.h"
#include "support/TemporaryDirectory.h"

#include <sys/stat.h>

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <unistd.h>

namespace {

using namespace cairnfield;

constexpr int maxDepth = 4;
constexpr int rounds = 51;

void fill(const TemporaryDirectory& home, const std::string& directory, int files) {
    for (int number = 0; number < files; ++number)
        home.write(directory + "/file" + std::to_string(number), "x\n");
}

/// Some 12,000 directories: documents, pictures by year, projects with their sources and package directories,
/// caches.
void makeHome(const TemporaryDirectory& home) {
    for (int year = 0; year < 20; ++year) {
        for (int month = 0; month < 12; ++month) {
            for (int day = 0; day < 15; ++day) {
                fill(home,
                     "Pictures/" + std::to_string(year) + "/" + std::to_string(month) + "/" +
                         std::to_string(day),
                     3);
            }
        }
    }
    for (int topic = 0; topic < 40; ++topic) {
        for (int folder = 0; folder < 20; ++folder) {
            fill(home, "Documents/topic" + std::to_string(topic) + "/folder" + std::to_string(folder), 6);
        }
    }
    for (int owner = 0; owner < 15; ++owner) {
        for (int project = 0; project < 20; ++project) {
            const std::string place =
                "src/owner" + std::to_string(owner) + "/project" + std::to_string(project);
            fill(home, place + "/.git", 4);
            fill(home, place + "/lib", 10);
            fill(home, place + "/node_modules/package", 4);
        }
        for (int other = 0; other < 20; ++other) {
            for (int part = 0; part < 10; ++part) {
                fill(home,
                     "src/owner" + std::to_string(owner) + "/notes" + std::to_string(other) + "/" +
                         std::to_string(part),
                     2);
            }
        }
    }
    for (int cache = 0; cache < 500; ++cache) fill(home, ".cache/entry" + std::to_string(cache), 4);
    for (int module = 0; module < 1'000; ++module)
        fill(home, "node_modules/module" + std::to_string(module), 2);
}

bool isPassedOver(const char* name) {
    if (name[0] == '.') return true;
    for (const char* skipped : {"node_modules", "DerivedData", "Pods", "venv", "__pycache__", "dist", "build",
                                "target", "Library", "Applications"}) {
        if (std::strcmp(name, skipped) == 0) return true;
    }
    return false;
}

int bareWalk(int parent, const char* name, int depth) {
    const int descriptor = openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) return 0;
    struct stat facts{};
    if (fstatat(descriptor, ".git", &facts, 0) == 0) {
        close(descriptor);
        return 1;
    }
    if (depth >= maxDepth) {
        close(descriptor);
        return 0;
    }
    DIR* directory = fdopendir(descriptor);
    int found = 0;
    while (const dirent* entry = readdir(directory)) {
        if (entry->d_type == DT_DIR && !isPassedOver(entry->d_name)) {
            found += bareWalk(descriptor, entry->d_name, depth + 1);
        }
    }
    closedir(directory);
    return found;
}

void discoveryBesideBareWalk(benchmark::State& state) {
    const TemporaryDirectory home;
    makeHome(home);
    ThreadPool blocking(1);
    RepositoryDiscoveryService service(blocking);
    const auto ours = [&service, &home] {
        const std::vector<FilePath> found =
            runBlocking(service.discoverRepositories({home.path()}, maxDepth));
        if (found.size() != 300) throw std::runtime_error("discovery missed a repository");
    };
    const auto bare = [&home] {
        if (bareWalk(AT_FDCWD, home.path().c_str(), 0) != 300)
            throw std::runtime_error("the bare walk missed one");
    };
    measureSideBySide(state, ours, bare);
}

}  // namespace

BENCHMARK(discoveryBesideBareWalk)
    ->Name("discovery to depth 4 in a home-like tree, against a bare walk")
    ->Iterations(rounds)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
