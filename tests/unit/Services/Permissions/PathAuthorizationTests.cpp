#include "Services/Permissions/PathAuthorization.h"
#include "Shared/Errors/CairnfieldError.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;

const DirectDistributionPathAuthorization authorization;

std::string failureOf(const FilePath& path) {
    try {
        const PathAccessToken token = authorization.beginAccess(path);
        return token.release ? "granted with something to give back" : "granted";
    } catch (const CairnfieldError& error) {
        return std::string(error.caseName());
    }
}

TEST(PathAuthorization, GrantsWhatMayBeReadAndTakesNothingBack) {
    const TemporaryDirectory directory;
    const PathAccessToken token = authorization.beginAccess(directory.path());
    EXPECT_EQ(token.url, directory.path());
    EXPECT_FALSE(token.release);
    EXPECT_EQ(failureOf(directory.write("file")), "granted");
}

TEST(PathAuthorization, ReportsADeletedFileAsMissing) {
    const TemporaryDirectory directory;
    const FilePath file = directory.write("file");
    fs::remove(file.bytes());
    try {
        (void)authorization.beginAccess(file);
        FAIL() << "nothing is there";
    } catch (const CairnfieldError& error) {
        EXPECT_EQ(error, CairnfieldError(CairnfieldError::PathMissing{file.bytes()}));
    }
}

TEST(PathAuthorization, ReportsALinkThatLeadsNowhereAsMissing) {
    const TemporaryDirectory directory;
    fs::create_symlink("nowhere", (directory / "link").bytes());
    EXPECT_EQ(failureOf(directory / "link"), "pathMissing");
}

TEST(PathAuthorization, ReportsWhatMayNotBeReadAsDenied) {
    const TemporaryDirectory directory;
    fs::permissions(directory.path().bytes(), fs::perms(0755));
    const FilePath file = directory.write("secret");
    const FilePath folder = directory.makeDirectory("closed");
    fs::permissions(file.bytes(), fs::perms(0));
    fs::permissions(folder.bytes(), fs::perms(0));
    EXPECT_EQ(asUnprivilegedUser([&] { return failureOf(file); }), "permissionDenied");
    EXPECT_EQ(asUnprivilegedUser([&] { return failureOf(folder); }), "permissionDenied");
    EXPECT_EQ(asUnprivilegedUser([&] { return failureOf(directory.path()); }), "granted");
    EXPECT_EQ(asUnprivilegedUser([&] { return failureOf(directory / "missing"); }), "pathMissing")
        << "a missing path is never denied";
}

TEST(PathAuthorization, NamesThePathThatIsDenied) {
    const TemporaryDirectory directory;
    fs::permissions(directory.path().bytes(), fs::perms(0755));
    const FilePath file = directory.write("secret\xFF");
    fs::permissions(file.bytes(), fs::perms(0));
    const std::string outcome = asUnprivilegedUser([&] {
        const PathAccessToken token = authorization.beginAccess(file);
        return token.url.bytes();
    });
    EXPECT_EQ(
        outcome,
        "threw: " + CairnfieldError(CairnfieldError::PermissionDenied{file.bytes()}).errorDescription());
}

}  // namespace
}  // namespace cairnfield
