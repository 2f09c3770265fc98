#pragma once
// One file that holds one value: read through a cache, replaced safely on every save. An actor: one caller at
// a time inside, and nothing inside a mutation suspends, so no mutation can lose another's change. A bad file
// never stops the program: it reads as the default value, with a log line, and stays on disk until the next
// save replaces it, which keeps its bytes beside it first; one that cannot be read is not replaced at all
// (Shared/Files/StoredFile.h).
//
// Value needs ==-free copying and a JSON form (to_json, from_json). A change of the file from outside is seen
// after a restart only. Dates lose their fraction of a second on the way through the file, not through the
// cache.

#include "Persistence/ApplicationSupport.h"
#include "Persistence/JSONFile.h"
#include "Shared/Concurrency/Actor.h"
#include "Shared/Concurrency/Task.h"
#include "Shared/Files/StoredFile.h"

#include <nlohmann/json.hpp>

#include <concepts>
#include <functional>
#include <optional>
#include <string>

namespace cairnfield {

template <class Value>
class JSONFileStore final : public Actor {
public:
    /// Reads nothing.
    JSONFileStore(Executor& pool, const ApplicationSupport& support, const std::string& fileName,
                  Value defaultValue)
        : Actor(pool),
          file_(support.directory().appending(fileName), support.notices()),
          defaultValue_(std::move(defaultValue)) {}

    [[nodiscard]] const FilePath& fileURL() const { return file_.path(); }

    /// The file is read at most once, unless a save replaces the cached value; with it goes what a crash left
    /// behind. Cannot fail.
    Task<Value> load() { co_return current(); }

    /// Whether the value is one that a file held or that was saved, and not the default for want of one.
    Task<bool> hasStoredValue() {
        (void)current();
        co_return hasStoredValue_;
    }

    /// Throws when the folder cannot be created, the value has no JSON form, the file that is there cannot be
    /// read, or the write fails; memory and disk then keep the old value.
    Task<> save(Value value) {
        (void)currentForChange();
        store(std::move(value));
        co_return;
    }

    /// Loads, lets `body` change a copy, saves it, returns it. Throws as save does. `body` must not call the
    /// store.
    Task<Value> mutate(std::function<void(Value&)> body) {
        Value copy = currentForChange();
        body(copy);
        store(copy);
        co_return copy;
    }

private:
    const Value& current() {
        assertIsolated();
        if (!cached_) {
            cached_ = defaultValue_;
            readFile();
        }
        return *cached_;
    }

    /// A file that could not be read may be one that can be by now; then the change is one of what it holds.
    const Value& currentForChange() {
        (void)current();
        if (file_.isUnreadable()) readFile();
        return *cached_;
    }

    void readFile() {
        hasStoredValue_ = JSONFile::read(file_, [&](const Json& json) { cached_ = json.get<Value>(); });
    }

    void store(Value value) {
        assertIsolated();
        JSONFile::write(file_, Json(value));
        cached_ = std::move(value);
        hasStoredValue_ = true;
    }

    StoredFile file_;
    const Value defaultValue_;
    std::optional<Value> cached_;  ///< absent until the first load or save
    bool hasStoredValue_ = false;
};

}  // namespace cairnfield
