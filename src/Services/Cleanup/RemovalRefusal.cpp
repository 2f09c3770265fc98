#include "Services/Cleanup/RemovalRefusal.h"

namespace cairnfield {

RemovalRefusal RemovalRefusal::unfinished(GitOperationInProgress operation) {
    RemovalRefusal refusal("A " + std::string(displayName(operation)) + " is in progress.", Kind::operation);
    refusal.operation = operation;
    return refusal;
}

CairnfieldError RemovalRefusal::asError(const FilePath& worktree) const {
    using E = CairnfieldError;
    const std::string& path = worktree.bytes();
    switch (kind) {
        case Kind::unreadable:
            return E(E::RepositoryUnreadable{path, words});
        case Kind::elsewhere:
            return E(E::StalePath{path});
        case Kind::operation:
            return E(E::OperationInProgress{path, std::string(displayName(operation))});
        case Kind::copies:
            return E(E::RecoveryVaultFailure{words});
        case Kind::state:
            break;
    }
    // The same look had nothing against it when the cleanup began: somebody is at work there.
    return E(E::WorktreeActive{path, words});
}

std::string RemovalRefusal::asSentence() const {
    if (kind == Kind::operation) return words;
    return "The worktree cannot be removed. " + words;
}

}  // namespace cairnfield
