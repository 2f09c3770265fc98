#include "Services/Cleanup/GitAnswers.h"

#include <utility>

namespace cairnfield {

const GitAnswer* GitAnswers::to(const GitQuestion& question) {
    const auto found = answers_.find(question);
    if (found != answers_.end()) return &found->second;
    open_.push_back(question);
    return nullptr;
}

std::vector<GitQuestion> GitAnswers::takeOpen() {
    return std::exchange(open_, {});
}

void GitAnswers::add(const GitQuestion& question, GitAnswer answer) {
    answers_.insert_or_assign(question, std::move(answer));
}

}  // namespace cairnfield
