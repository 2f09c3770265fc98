// The whole model on a home that has no room left.

#include "Shared/Files/Files.h"
#include "support/App/AppHarness.h"
#include "support/SmallDisk.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace cairnfield {
namespace {

constexpr std::size_t diskBytes = 1 << 20;

std::string bytesOf(const FilePath& file) {
    return readFile(file).value_or("");
}

/// Empty when everything is as it should be, else what is not.
std::string livesOnAFullDisk(const FilePath& disk) {
    setenv("TMPDIR", disk.c_str(), 1);
    AppHarness app;
    const AppState& state = app.model->state();
    const FilePath data = app.home.path().appending("data").appending("Cairnfield");
    app.run(app.model->addWatchedFolder(app.home.makeDirectory("projects")));
    app.run(app.model->refreshStorage());
    const std::string folders = bytesOf(data.appending("watched-folders.json"));
    const std::string history = bytesOf(data.appending("storage-history.json"));
    if (folders.empty() || history.empty()) return "nothing was stored";

    const FilePath filler = fillDisk(disk);
    app.wallClock.advance(std::chrono::minutes(5));
    app.volume.set(0, 500'000'000'000);
    app.run(app.model->refreshStorage());
    app.run(app.model->addWatchedFolder(app.home.path()));
    if (!state.storage.get() || state.storage.get()->availableCapacity != 0) return "the reading is lost";
    if (state.incident.get().activeLevel != StorageLevel::critical) return "the incident is lost";
    if (!state.folderError.get()) return "the folder that could not be stored is not told of";
    if (state.watchedFolders.get().size() != 1) return "the list of folders changed";
    if (bytesOf(data.appending("watched-folders.json")) != folders) return "the folders are not whole";
    if (bytesOf(data.appending("storage-history.json")) != history) return "the history is not whole";

    std::filesystem::remove(filler.bytes());
    app.wallClock.advance(std::chrono::minutes(5));
    app.run(app.model->refreshStorage());
    if (state.storageHistory.get().size() != 2) return "the old history does not come back";
    return "";
}

TEST(FullDisk, KeepsTheProgramRunningAndTheOldFilesWhole) {
    const std::optional<std::string> wrong = onSmallDisk(diskBytes, livesOnAFullDisk);
    if (!wrong) GTEST_SKIP() << "no disk of its own may be mounted here";
    EXPECT_EQ(*wrong, "");
}

}  // namespace
}  // namespace cairnfield
