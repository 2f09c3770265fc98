#pragma once
// The screen of the Recovery Vault over the real model, with a vault that holds what the test puts in.

#include "Features/RecoveryVault/RecoveryVaultViewModel.h"
#include "support/App/AppHarness.h"
#include "support/AppModelStaging.h"
#include "support/FakeSavePanel.h"
#include "support/FakeWorkspace.h"
#include "support/QtApplication.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace cairnfield {

class VaultFixture : public testing::Test {
protected:
    AppState& state() { return AppModelStaging::state(*app.model); }

    /// An entry whose copy need not exist.
    [[nodiscard]] RecoveryVaultEntry entry(const std::string& relativePath) {
        RecoveryVaultEntry entry;
        entry.id = UUID::make();
        entry.receiptID = UUID::make();
        entry.repositoryName = "atlas";
        entry.originalWorktreePath = FilePath("/code/atlas-work");
        entry.relativePath = FilePath(relativePath);
        entry.storedPath =
            app.support.recoveryVaultDirectory().appending(entry.receiptID.text()).appending(relativePath);
        entry.reason = "Ignored file that looks sensitive; never pushed to a remote.";
        // As the index keeps it.
        entry.archivedAt =
            std::chrono::floor<std::chrono::seconds>(app.wallClock.now()) - std::chrono::hours(48);
        return entry;
    }

    void stage(std::vector<RecoveryVaultEntry> entries) {
        state().vaultEntries.set(std::move(entries));
        screen->flush();
    }

    /// Writes the vault as a run before this one left it, and starts on it.
    void keep(const std::vector<std::pair<RecoveryVaultEntry, std::string>>& files) {
        Json index = Json::array();
        for (const auto& [entry, content] : files) {
            write(entry.storedPath, content);
            index.push_back(entry);
        }
        app.home.write("data/Cairnfield/recovery-vault.json", index.dump());
        startAnew();
    }
    /// A new start of the program on the same home.
    void startAnew() {
        screen.reset();
        app.restart();
        app.run(app.model->start());
        screen = std::make_unique<RecoveryVaultViewModel>(*app.model, workspace, panel, app.wallClock);
    }

    static void write(const FilePath& file, const std::string& content) {
        std::filesystem::create_directories(file.parent().bytes());
        std::ofstream(file.bytes(), std::ios::binary) << content;
    }
    [[nodiscard]] static bool exists(const FilePath& file) {
        return std::filesystem::exists(std::filesystem::symlink_status(file.bytes()));
    }

    [[nodiscard]] VaultListItem item(int row) {
        return screen->rows()
            ->data(screen->rows()->index(row), ItemListModel::itemRole)
            .value<VaultListItem>();
    }

    QtApplication qt;
    AppHarness app;
    FakeWorkspace workspace;
    FakeSavePanel panel;
    std::unique_ptr<RecoveryVaultViewModel> screen =
        std::make_unique<RecoveryVaultViewModel>(*app.model, workspace, panel, app.wallClock);
};

}  // namespace cairnfield
