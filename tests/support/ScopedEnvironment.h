#pragma once
// One environment variable with another value for as long as a test needs it, as if the program had been
// started with it. Not while other threads read the environment.

#include "Shared/Environment/Environment.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace cairnfield {

class ScopedEnvironment {
public:
    /// Absent removes the variable.
    ScopedEnvironment(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
        if (const char* before = std::getenv(name_.c_str())) before_ = before;
        put(value);
    }
    ~ScopedEnvironment() { put(before_); }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    void put(const std::optional<std::string>& value) const {
        if (value) {
            setenv(name_.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name_.c_str());
        }
        detail::readEnvironmentAgain();
    }

    const std::string name_;
    std::optional<std::string> before_;
};

}  // namespace cairnfield
