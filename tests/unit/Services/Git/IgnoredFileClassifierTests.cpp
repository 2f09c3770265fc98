#include "Services/Git/IgnoredFileClassifier.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using IgnoredFileClassifier::classify;
using IgnoredFileClassifier::rebuildHint;
using IgnoredFileClassifier::topLevelEntries;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr IgnoredEntryClass rebuildable = IgnoredEntryClass::rebuildable;
constexpr IgnoredEntryClass sensitive = IgnoredEntryClass::sensitive;
constexpr IgnoredEntryClass unknown = IgnoredEntryClass::unknown;

TEST(IgnoredFileClassifier, NamesEachTopLevelEntryOnceInOrderOfAppearance) {
    EXPECT_THAT(topLevelEntries({"b/x", "a/b/c", "a/d", "b/", "c"}), ElementsAre("b", "a", "c"));
}

TEST(IgnoredFileClassifier, TakesADirectoryWithItsTrailingSlashByItsName) {
    EXPECT_THAT(topLevelEntries({"build/"}), ElementsAre("build"));
}

TEST(IgnoredFileClassifier, SkipsPathsWithoutAnyComponent) {
    EXPECT_THAT(topLevelEntries({"", "/", "//"}), IsEmpty());
    EXPECT_THAT(topLevelEntries({"//a//b"}), ElementsAre("a"));
}

TEST(IgnoredFileClassifier, CarriesOddNamesByteForByte) {
    EXPECT_THAT(topLevelEntries({"-rf/x", "a b\n/y", "\xff\xfe/z", "\"q\""}),
                ElementsAre("-rf", "a b\n", "\xff\xfe", "\"q\""));
}

TEST(IgnoredFileClassifier, KnowsRebuildableOutputByName) {
    for (const char* name :
         {"node_modules", ".next",       ".nuxt",        ".turbo",       ".parcel-cache", ".svelte-kit",
          "dist",         "build",       "out",          "target",       ".output",       ".cache",
          ".gradle",      "DerivedData", ".build",       "Pods",         "__pycache__",   ".pytest_cache",
          ".mypy_cache",  ".ruff_cache", ".venv",        "venv",         "coverage",      ".nyc_output",
          ".angular",     ".vite",       ".eslintcache", "vendor/bundle"}) {
        EXPECT_EQ(classify(name), rebuildable) << name;
    }
}

TEST(IgnoredFileClassifier, TakesUpperCaseForRebuildableOnlyWhereTheTableIsInLowerCase) {
    EXPECT_EQ(classify("NODE_MODULES"), rebuildable);
    EXPECT_EQ(classify("deriveddata"), unknown);
    EXPECT_EQ(classify("pods"), unknown);
}

TEST(IgnoredFileClassifier, KnowsSecretsByNameInAnyCase) {
    for (const char* name :
         {".env", ".npmrc", ".pypirc", ".netrc", "credentials", "credentials.json", "id_rsa", "id_ed25519",
          "id_ecdsa", ".masterkey", "secrets.json", "GoogleService-Info.plist", "google-services.json",
          "Secrets.JSON", "GOOGLESERVICE-INFO.PLIST", ".NPMRC"}) {
        EXPECT_EQ(classify(name), sensitive) << name;
    }
}

TEST(IgnoredFileClassifier, KnowsSecretsByExtensionInAnyCase) {
    for (const char* name : {"a.pem", "a.key", "a.p12", "a.pfx", "a.keystore", "a.jks", "a.mobileprovision",
                             "a.provisionprofile", "a.cer", "a.der", "CERT.PEM", "two.dots.key"}) {
        EXPECT_EQ(classify(name), sensitive) << name;
    }
}

TEST(IgnoredFileClassifier, WantsAWholeExtension) {
    for (const char* name : {"key", ".der", "a.", "monkey", "a.keys", "a.pem.txt"})
        EXPECT_EQ(classify(name), unknown) << name;
}

TEST(IgnoredFileClassifier, CastsAWideNetForEnvironmentFilesAndKeys) {
    for (const char* name : {".env.local", "staging.env", ".environment", ".envrc", "service-account-dev",
                             "ServiceAccount.txt", "id_rsa.old", "id_ed25519_work", "my-credential-store",
                             "topsecret", "signing-key.txt", "code-signing-config", "KeySigning"}) {
        EXPECT_EQ(classify(name), sensitive) << name;
    }
}

TEST(IgnoredFileClassifier, LeavesOtherNamesUnknown) {
    for (const char* name : {"signing.txt", "id_ecdsa.old", "env", "environment", "notes", "\xff\xfe", ""})
        EXPECT_EQ(classify(name), unknown) << name;
}

TEST(IgnoredFileClassifier, LetsSensitivityWinOverARebuildableName) {
    // No name stands in both tables; a rebuildable one with a secret's extension comes closest.
    EXPECT_EQ(classify("build"), rebuildable);
    EXPECT_EQ(classify("build.key"), sensitive);
    EXPECT_EQ(classify("secret-build"), sensitive);
}

TEST(IgnoredFileClassifier, TellsHowOutputComesBack) {
    EXPECT_EQ(rebuildHint("node_modules"), "npm install / pnpm install / yarn");
    EXPECT_EQ(rebuildHint(".next"), "next build");
    for (const char* name : {".nuxt", ".output"}) EXPECT_EQ(rebuildHint(name), "nuxt build") << name;
    for (const char* name : {".turbo", ".vite", ".parcel-cache", ".cache", ".eslintcache"})
        EXPECT_EQ(rebuildHint(name), "the next build or lint run") << name;
    for (const char* name : {"dist", "build", "out"})
        EXPECT_EQ(rebuildHint(name), "the project's build command") << name;
    EXPECT_EQ(rebuildHint("target"), "cargo build");
    EXPECT_EQ(rebuildHint(".build"), "swift build");
    EXPECT_EQ(rebuildHint("DerivedData"), "an Xcode build");
    EXPECT_EQ(rebuildHint("Pods"), "pod install");
    for (const char* name : {".venv", "venv"}) EXPECT_EQ(rebuildHint(name), "python -m venv") << name;
    for (const char* name : {"__pycache__", ".pytest_cache", ".mypy_cache", ".ruff_cache"})
        EXPECT_EQ(rebuildHint(name), "the next Python run") << name;
    EXPECT_EQ(rebuildHint(".gradle"), "a Gradle build");
    for (const char* name : {"coverage", ".nyc_output"})
        EXPECT_EQ(rebuildHint(name), "the next test run") << name;
}

TEST(IgnoredFileClassifier, HasNoHintForNamesItDoesNotKnowAsWritten) {
    for (const char* name :
         {"NODE_MODULES", ".svelte-kit", ".angular", "vendor/bundle", ".env", "", "anything"})
        EXPECT_EQ(rebuildHint(name), std::nullopt) << name;
}

}  // namespace
}  // namespace cairnfield
