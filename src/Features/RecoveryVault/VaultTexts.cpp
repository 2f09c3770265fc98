#include "Features/RecoveryVault/VaultTexts.h"

#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Formatting/DateFormatting.h"
#include "Shared/Text/Text.h"

namespace cairnfield {

VaultRowText vaultRowText(const RecoveryVaultEntry& entry, Date now) {
    VaultRowText text;
    text.path = entry.relativePath.display();
    text.size = ByteFormatting::string(entry.sizeBytes);
    const std::string age = DateFormatting::relative(entry.archivedAt, now);
    text.origin = entry.isFound() ? "Found in the vault without an entry · put there " + age
                                  : visibleText(entry.repositoryName) + " · archived " + age;
    if (entry.expiresAt) text.expiry = "Expires " + DateFormatting::absolute(entry.expiresAt);
    text.description = text.size + ", " + text.origin;
    if (!text.expiry.empty()) text.description += ", " + text.expiry;
    return text;
}

std::string vaultDeletionQuestion(const RecoveryVaultEntry& entry) {
    return visibleText(entry.relativePath.lastComponent()) +
           " cannot be recovered afterwards. It exists nowhere else.";
}

}  // namespace cairnfield
