#include "Platform/Linux/TreeWalk.h"

#include "Platform/Linux/Automounts.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

namespace cairnfield {

/// Belongs to itself from the moment it is posted.
struct TreeWalk::Helper : Work {
    explicit Helper(std::shared_ptr<TreeWalk> of) : walk(std::move(of)) {
        run = [](Work* work) noexcept {
            const std::unique_ptr<Helper> self(static_cast<Helper*>(work));
            self->walk->help();
        };
    }
    std::shared_ptr<TreeWalk> walk;
};

TreeWalk::TreeWalk(FilePath root, std::stop_token stop) {
    shared_.root = std::move(root);
    shared_.stop = std::move(stop);
}

WalkTally TreeWalk::run(FileDescriptor opened, const struct stat& standing, Executor* helpers) {
    shared_.device = standing.st_dev;
    if (hasAutomountBelow(opened.get())) shared_.automounts = Automounts::below;
    std::function<void()> ask;
    if (helpers) ask = [this, helpers] { askForHelp(*helpers); };
    TreeWalker walker(shared_, std::move(ask));
    static_cast<void>(shared_.queue.join());
    walker.run(shared_.directories.addRoot(std::move(opened), standing));
    shared_.queue.leave();
    WalkQueue::Stack untaken;
    const std::exception_ptr failure = shared_.queue.awaitLeaving(untaken);
    for (; !untaken.empty(); untaken.pop_back())
        shared_.directories.abandon(untaken.back(), walker.tally().largest);
    if (failure) std::rethrow_exception(failure);
    add(walker.tally());
    const std::lock_guard lock(mutex_);
    std::vector<FilePath>& unentered = whole_.unentered;
    std::sort(unentered.begin(), unentered.end());
    unentered.erase(std::unique(unentered.begin(), unentered.end()), unentered.end());
    return std::move(whole_);
}

void TreeWalk::askForHelp(Executor& helpers) {
    helpers.post(std::make_unique<Helper>(shared_from_this()).release());
}

void TreeWalk::help() noexcept {
    if (!shared_.queue.join()) return;
    try {
        TreeWalker walker(shared_, nullptr);
        walker.run(nullptr);
        add(walker.tally());
    } catch (...) {
        shared_.queue.end(std::current_exception());
    }
    shared_.queue.leave();
}

void TreeWalk::add(WalkTally& part) {
    const std::lock_guard lock(mutex_);
    whole_.bytes += part.bytes;
    whole_.files += part.files;
    std::move(part.unentered.begin(), part.unentered.end(), std::back_inserter(whole_.unentered));
    whole_.largest.merge(part.largest);
}

}  // namespace cairnfield
