#pragma once
// A pasteboard that nobody else writes to.

#include "Platform/Pasteboard.h"

#include <string>
#include <utility>

namespace cairnfield {

class FakePasteboard final : public Pasteboard {
public:
    void clearAndWrite(std::string text) override {
        contents = std::move(text);
        ++writes;
    }

    std::string contents;
    int writes = 0;
};

}  // namespace cairnfield
