#include "Features/History/ReceiptTexts.h"

#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Formatting/DateFormatting.h"
#include "Shared/Text/Text.h"

#include <string_view>

namespace cairnfield {

ReceiptRowText receiptRowText(const CleanupReceipt& receipt) {
    return {std::string(title(receipt.outcome)), visibleText(receipt.repositoryName),
            DateFormatting::absolute(receipt.date)};
}

std::vector<LabelledText> receiptValueTexts(const CleanupReceipt& receipt) {
    std::vector<LabelledText> rows;
    const auto add = [&](const char* label, std::string value) {
        rows.push_back({label, std::move(value), false});
    };
    const auto addOptional = [&](const char* label, const std::optional<std::string>& value, bool isFixed) {
        if (value) rows.push_back({label, visibleText(*value), isFixed});
    };
    add("Worktree", receipt.worktreePath.display());
    addOptional("Original branch", receipt.originalBranch, false);
    addOptional("Recovery branch", receipt.recoveryBranch, true);
    addOptional("Preserved commit", receipt.preservedCommitSHA, true);
    if (receipt.pullRequestNumber) add("Pull request", "#" + std::to_string(*receipt.pullRequestNumber));
    add("Safety at the time", std::string(title(disposition(receipt.safety))));
    add("Reclaimed", ByteFormatting::string(receipt.reclaimedBytes));
    add("Final stage", std::string(title(receipt.finalStage)));
    return rows;
}

std::string receiptFailureText(const CleanupReceipt& receipt) {
    return receipt.errorSummary ? visibleLines(*receipt.errorSummary) : std::string();
}

}  // namespace cairnfield
