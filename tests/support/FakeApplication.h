#pragma once
// A program whose windows the test makes; it remembers what came forward.

#include "Platform/Application.h"

#include <deque>
#include <vector>

namespace cairnfield {

class FakeApplication final : public Application {
public:
    class Window final : public ApplicationWindow {
    public:
        explicit Window(bool canBeMain) : canBeMain_(canBeMain) {}
        [[nodiscard]] bool canBecomeMain() const override { return canBeMain_; }
        void bringForward() override { ++timesForward; }

        int timesForward = 0;

    private:
        bool canBeMain_;
    };

    void activate() override { ++activations; }
    [[nodiscard]] std::vector<ApplicationWindow*> windows() override {
        std::vector<ApplicationWindow*> pointers;
        for (Window& window : all) pointers.push_back(&window);
        return pointers;
    }

    int activations = 0;
    std::deque<Window> all;
};

}  // namespace cairnfield
