#pragma once
// Remembers what it was asked to show, and answers what the test says.

#include "Platform/Workspace.h"

#include <vector>

namespace cairnfield {

class FakeWorkspace final : public Workspace {
public:
    void revealAll(const std::vector<FilePath>& items, Told told) override {
        revealed.insert(revealed.end(), items.begin(), items.end());
        told(answer);
    }
    std::optional<std::string> openTerminal(const FilePath& directory) override {
        terminals.push_back(directory);
        return answer;
    }

    std::vector<FilePath> revealed;
    std::vector<FilePath> terminals;
    std::optional<std::string> answer;
};

}  // namespace cairnfield
