#pragma once
// A save panel that the test answers.

#include "Platform/SavePanel.h"

#include <string>
#include <utility>
#include <vector>

namespace cairnfield {

class FakeSavePanel final : public SavePanel {
public:
    void show(std::string suggestedName, Finished finished) override {
        suggestedNames.push_back(std::move(suggestedName));
        finished_ = std::move(finished);
    }

    [[nodiscard]] bool isOpen() const { return finished_ != nullptr; }
    void choose(const FilePath& place) { answer(place); }
    void cancel() { answer(std::nullopt); }

    std::vector<std::string> suggestedNames;

private:
    void answer(const std::optional<FilePath>& place) {
        if (const Finished finished = std::exchange(finished_, nullptr)) finished(place);
    }

    Finished finished_;
};

}  // namespace cairnfield
