#include "Persistence/CleanupReceiptStore.h"

#include "Persistence/JSONFileStore.h"
#include "Persistence/StoredFileNames.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace cairnfield {

using Receipts = std::vector<CleanupReceipt>;

CleanupReceiptStore::CleanupReceiptStore(Executor& pool, const ApplicationSupport& support)
    : Actor(pool),
      store_(std::make_unique<JSONFileStore<Receipts>>(pool, support, StoredFileNames::cleanupReceipts,
                                                       Receipts())) {}

CleanupReceiptStore::~CleanupReceiptStore() = default;

Task<> CleanupReceiptStore::append(CleanupReceipt receipt) {
    std::function<void(Receipts&)> add = [&](Receipts& receipts) {
        std::erase_if(receipts, [&](const CleanupReceipt& old) { return old.id == receipt.id; });
        receipts.push_back(receipt);
    };
    try {
        co_await store_->mutate(std::move(add));
    } catch (const std::exception& failure) {
        Log::persistence().error("Storing a receipt failed: {}", visibleText(describe(failure)));
    }
}

Task<std::vector<CleanupReceipt>> CleanupReceiptStore::all() {
    Receipts receipts = co_await store_->load();
    // The place breaks ties, so that receipts of one date keep their order.
    std::vector<std::pair<Date, std::size_t>> order;
    for (const CleanupReceipt& receipt : receipts) order.emplace_back(receipt.date, order.size());
    std::ranges::sort(order, [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first > b.first : a.second < b.second;
    });
    Receipts sorted;
    for (const auto& [date, place] : order) sorted.push_back(std::move(receipts[place]));
    co_return sorted;
}

Task<> CleanupReceiptStore::clear() {
    co_await store_->save(Receipts());
}

}  // namespace cairnfield
