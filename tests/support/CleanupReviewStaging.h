#pragma once
// Sets what the review sheet shows without the work that would lead there. For pictures; the sheet's own
// tests do the work.

#include "Features/CleanupReview/CleanupReviewViewModel.h"

namespace cairnfield {

class CleanupReviewStaging {
public:
    /// As if the preflight of the review that is open and the look inside had just answered.
    static void answer(CleanupReviewViewModel& review, CleanupPreflightReport report, ReviewLook look = {}) {
        review.preflightEnded(std::move(report), std::move(look));
    }
    /// As if the cleanup had been started and were in this stage.
    static void run(CleanupReviewViewModel& review, CleanupStage stage) {
        review.phase_ = CleanupReviewViewModel::Phase::running;
        review.stages_.moveTo(stage);
        emit review.phaseChanged();
    }
    /// As if it had just ended.
    static void end(CleanupReviewViewModel& review, std::optional<CleanupReceipt> receipt) {
        review.cleanupEnded(std::move(receipt));
    }
};

}  // namespace cairnfield
