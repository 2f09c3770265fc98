#include "Features/RecoveryVault/VaultTexts.h"
#include "Shared/Formatting/DateFormatting.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

constexpr Date now = Date(std::chrono::seconds(1'800'000'000));

RecoveryVaultEntry entry(const std::string& relativePath) {
    RecoveryVaultEntry entry;
    entry.repositoryName = "atlas";
    entry.relativePath = FilePath(relativePath);
    entry.sizeBytes = 2'048;
    entry.archivedAt = now - std::chrono::hours(48);
    return entry;
}

TEST(VaultTexts, SayWhatTheFileIsAndWhereItCameFrom) {
    const VaultRowText text = vaultRowText(entry("config/.env"), now);
    EXPECT_EQ(text.path, "config/.env");
    EXPECT_EQ(text.size, "2 kB");
    EXPECT_EQ(text.origin, "atlas · archived 2 days ago");
    EXPECT_EQ(text.description, "2 kB, atlas · archived 2 days ago");
}

TEST(VaultTexts, HaveNoExpiryLineForAnEntryThatNeverExpires) {
    EXPECT_EQ(vaultRowText(entry(".env"), now).expiry, "");
}

TEST(VaultTexts, SayWhenAnEntryExpires) {
    RecoveryVaultEntry expiring = entry(".env");
    expiring.expiresAt = now + std::chrono::hours(24 * 90);
    const std::string expected = "Expires " + DateFormatting::absolute(expiring.expiresAt);
    EXPECT_EQ(vaultRowText(expiring, now).expiry, expected);
    EXPECT_EQ(vaultRowText(expiring, now).description, "2 kB, atlas · archived 2 days ago, " + expected);
    expiring.expiresAt = now - std::chrono::hours(1);
    EXPECT_EQ(vaultRowText(expiring, now).expiry, "Expires " + DateFormatting::absolute(expiring.expiresAt))
        << "one that has expired stays, and says the same";
}

TEST(VaultTexts, AskAboutTheFileByItsName) {
    EXPECT_EQ(vaultDeletionQuestion(entry("config/.env")),
              ".env cannot be recovered afterwards. It exists nowhere else.");
}

TEST(VaultTexts, MakeHostileNamesSafeToLookAt) {
    RecoveryVaultEntry hostile = entry("a\nb/\u202Efdp.\xff");
    hostile.repositoryName = "at\x1Blas";
    EXPECT_EQ(vaultRowText(hostile, now).path, "a␊b/\uFFFDfdp.\uFFFD");
    EXPECT_EQ(vaultRowText(hostile, now).origin, "at␛las · archived 2 days ago");
    EXPECT_EQ(vaultDeletionQuestion(hostile),
              "\uFFFDfdp.\uFFFD cannot be recovered afterwards. It exists nowhere else.");
}

TEST(VaultTexts, SayOfAFoundCopyThatItIsOne) {
    RecoveryVaultEntry found;
    found.relativePath = FilePath(".env");
    found.archivedAt = Date(std::chrono::seconds(1'750'000'000));
    ASSERT_TRUE(found.isFound());
    const VaultRowText text = vaultRowText(found, found.archivedAt + std::chrono::hours(48));
    EXPECT_EQ(text.origin,
              "Found in the vault without an entry · put there " +
                  DateFormatting::relative(found.archivedAt, found.archivedAt + std::chrono::hours(48)));
}

}  // namespace
}  // namespace cairnfield
