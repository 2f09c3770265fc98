#pragma once
// The words of one receipt. Pure functions over plain values, without a toolkit; texts from outside leave
// here safe to look at.

#include "Features/Presentation/ShownText.h"
#include "Models/CleanupReceipt.h"

#include <string>
#include <vector>

namespace cairnfield {

struct ReceiptRowText {
    std::string outcome;
    std::string repository;
    std::string date;

    friend bool operator==(const ReceiptRowText&, const ReceiptRowText&) = default;
};

[[nodiscard]] ReceiptRowText receiptRowText(const CleanupReceipt& receipt);

/// A line for each value that the receipt has.
[[nodiscard]] std::vector<LabelledText> receiptValueTexts(const CleanupReceipt& receipt);

/// What stopped the attempt, over as many lines as it has; empty when nothing did.
[[nodiscard]] std::string receiptFailureText(const CleanupReceipt& receipt);

}  // namespace cairnfield
