#pragma once
// Owns "cleanup-receipts.json": a list of receipts, new ones at the end, without a limit of number or age. An
// actor.

#include "Models/CleanupReceipt.h"
#include "Persistence/ApplicationSupport.h"
#include "Shared/Concurrency/Actor.h"

#include <memory>
#include <vector>

namespace cairnfield {

template <class Value>
class JSONFileStore;

class CleanupReceiptStore final : public Actor {
public:
    CleanupReceiptStore(Executor& pool, const ApplicationSupport& support);
    ~CleanupReceiptStore();

    /// A receipt of the same identity is replaced, and the new one stands at the end. A write that fails is
    /// one log line, since no cleanup's result depends on its record; the list then stays as it was.
    Task<> append(CleanupReceipt receipt);
    /// Newest first; those of one date in the order of the file.
    Task<std::vector<CleanupReceipt>> all();
    /// Throws as JSONFileStore::save does; the list then stays as it was.
    Task<> clear();

private:
    const std::unique_ptr<JSONFileStore<std::vector<CleanupReceipt>>> store_;
};

}  // namespace cairnfield
