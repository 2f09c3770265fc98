#include "Features/Presentation/Tints.h"

namespace cairnfield {

std::string_view tintName(StorageLevel level) {
    switch (level) {
        case StorageLevel::normal:
            return "green";
        case StorageLevel::warning:
            return "orange";
        case StorageLevel::critical:
            return "red";
    }
    return "secondary";
}

std::string_view tintName(SafetyDisposition disposition) {
    switch (disposition) {
        case SafetyDisposition::safeToClean:
            return "green";
        case SafetyDisposition::preservedRemotely:
            return "blue";
        case SafetyDisposition::preserveFirst:
            return "orange";
        case SafetyDisposition::inUse:
            return "purple";
        case SafetyDisposition::needsReview:
            return "yellow";
        case SafetyDisposition::cannotClean:
            return "secondary";
    }
    return "secondary";
}

std::string_view tintName(CleanupOutcome outcome) {
    switch (outcome) {
        case CleanupOutcome::succeeded:
            return "green";
        case CleanupOutcome::failed:
            return "red";
        case CleanupOutcome::cancelled:
            return "secondary";
        case CleanupOutcome::partiallyCompleted:
            return "orange";
    }
    return "secondary";
}

}  // namespace cairnfield
