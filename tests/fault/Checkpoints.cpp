#include "fault/Checkpoints.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace cairnfield {

Checkpoints::Checkpoints(JsonLines& lines, FileDescriptor answers, std::set<std::size_t> numbers,
                         std::vector<std::string> names, std::chrono::seconds ahead,
                         std::optional<std::chrono::seconds> at)
    : lines_(lines),
      answers_(std::move(answers)),
      numbers_(std::move(numbers)),
      standsStill_(at.has_value()),
      seconds_(at.value_or(ahead).count()),
      names_(std::move(names)) {}

void Checkpoints::reach(const std::string& name) {
    const std::lock_guard lock(mutex_);
    const std::size_t number = ++reached_;
    const bool standsStill = standsStillAt(number, name);
    lines_.print(standsStill ? "stop" : "point", {{"number", number}, {"name", jsonFromText(name)}});
    if (standsStill) waitForGo();
}

Date Checkpoints::now() const {
    const std::chrono::seconds seconds(seconds_.load());
    return standsStill_ ? Date(seconds) : std::chrono::system_clock::now() + seconds;
}

bool Checkpoints::standsStillAt(std::size_t number, const std::string& name) {
    const auto found = std::ranges::find_if(
        names_, [&name](const std::string& beginning) { return name.starts_with(beginning); });
    const bool isNamed = found != names_.end();
    if (isNamed) names_.erase(found);
    return isNamed || numbers_.contains(number);
}

void Checkpoints::waitForGo() {
    const std::string jump = "jump ";
    for (;;) {
        const std::string line = answerLine();
        if (!line.starts_with(jump)) return;
        seconds_ += std::stoll(line.substr(jump.size()));
    }
}

std::string Checkpoints::answerLine() {
    std::string line;
    for (char next = 0;;) {
        const ssize_t count = read(answers_.get(), &next, 1);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw std::system_error(errno, std::generic_category(), "reading the driver's answer");
        if (count == 0 || next == '\n') return line;
        line += next;
    }
}

}  // namespace cairnfield
