#include "Platform/Linux/RootGuards.h"

#include <sys/inotify.h>
#include <sys/stat.h>

#include <array>
#include <deque>
#include <limits.h>
#include <unistd.h>

namespace cairnfield {

namespace {

constexpr std::uint32_t going = IN_MOVE_SELF | IN_DELETE_SELF;
constexpr std::uint32_t namesChanging = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB;
constexpr int linksFollowed = 40;  // as many as the system follows

std::string inside(const std::string& directory, const std::string& name) {
    return directory.ends_with('/') ? directory + name : directory + '/' + name;
}

void putFirst(std::deque<std::string>& names, const FilePath& path) {
    const std::vector<std::string> components = path.components();
    names.insert(names.begin(), components.begin(), components.end());
}

std::string targetOf(const std::string& link) {
    std::array<char, PATH_MAX> target = {};
    const ssize_t length = readlink(link.c_str(), target.data(), target.size());
    return {target.data(), static_cast<std::size_t>(length < 0 ? 0 : length)};
}

}  // namespace

void RootGuards::guard(const std::vector<FilePath>& roots) {
    for (const auto& [watch, guard] : guards_) queue_.remove(watch);
    guards_.clear();
    for (std::size_t root = 0; root < roots.size(); ++root) guardWay(roots[root], root);
}

void RootGuards::guardWay(const FilePath& path, std::size_t root) {
    std::deque<std::string> names;
    putFirst(names, path);
    std::string place = "/";
    guardPlace(place, root, nullptr);
    for (int links = 0; !names.empty();) {
        const std::string name = names.front();
        names.pop_front();
        if (name == ".") continue;
        if (name == "..") {
            place = FilePath(place).parent().bytes();
            continue;
        }
        const std::string next = inside(place, name);
        struct stat standing = {};
        const bool isThere = lstat(next.c_str(), &standing) == 0;
        const bool isLink = isThere && S_ISLNK(standing.st_mode);
        if (!isThere || names.empty() || (isLink && links == linksFollowed)) guardPlace(place, root, &name);
        if (!isThere || (isLink && links++ == linksFollowed)) return;
        guardPlace(next, root, nullptr);
        if (!isLink) {
            place = next;
            continue;
        }
        const FilePath target(targetOf(next));
        if (target.isAbsolute()) place = "/";
        putFirst(names, target);
    }
}

void RootGuards::guardPlace(const std::string& place, std::size_t root, const std::string* awaited) {
    const std::uint32_t mask = IN_MASK_ADD | IN_DONT_FOLLOW | going | (awaited ? namesChanging : 0);
    const InotifyQueue::Added added = queue_.add(place.c_str(), mask);
    if (added.watch == 0) return;
    Guard& guard = guards_[added.watch];
    guard.roots.insert(root);
    if (awaited) guard.awaited.emplace(*awaited, root);
}

RootGuards::Concerned RootGuards::takeEvents() {
    Concerned concerned;
    while (queue_.fill()) {
        while (const std::optional<InotifyEvent> event = queue_.next()) {
            if ((event->mask & IN_Q_OVERFLOW) != 0) {
                for (const auto& [watch, guard] : guards_)
                    concerned.moved.insert(guard.roots.begin(), guard.roots.end());
            }
            const auto found = guards_.find(event->watch);
            if (found == guards_.end()) continue;
            const Guard& guard = found->second;
            if ((event->mask & (going | IN_UNMOUNT)) != 0)
                concerned.moved.insert(guard.roots.begin(), guard.roots.end());
            for (const auto& [name, root] : guard.awaited) {
                if (name == event->name) concerned.inDoubt.insert(root);
            }
        }
    }
    concerned.inDoubt.insert(concerned.moved.begin(), concerned.moved.end());
    return concerned;
}

}  // namespace cairnfield
