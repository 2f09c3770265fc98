#pragma once
// Settings that live as long as the test, and can be looked into.

#include "Platform/UserDefaults.h"

#include <map>
#include <string>

namespace cairnfield {

class InMemoryUserDefaults final : public UserDefaults {
public:
    [[nodiscard]] std::optional<DefaultsValue> value(std::string_view key) const override {
        const auto found = values.find(key);
        if (found == values.end()) return std::nullopt;
        return found->second;
    }
    void set(std::string_view key, DefaultsValue value) override {
        values.insert_or_assign(std::string(key), std::move(value));
    }
    void setWhileTyping(std::string_view key, DefaultsValue value) override {
        isTyping = true;
        set(key, std::move(value));
    }
    void doneTyping() override { isTyping = false; }
    void remove(std::string_view key) override {
        if (const auto found = values.find(key); found != values.end()) values.erase(found);
    }

    std::map<std::string, DefaultsValue, std::less<>> values;
    bool isTyping = false;  ///< the last value is one that need not be on disk yet
};

}  // namespace cairnfield
