// One walk of real files: what counts, what does not, and how it fails.

#include "RealTree.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Errors/CairnfieldError.h"
#include "support/UnprivilegedUser.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace cairnfield {
namespace {

struct TreeMeasurerTest : testing::Test {
    TemporaryDirectory home;
    FilePath root = home.makeDirectory("root");
    Measuring measure;

    void reserve(const std::string& relative, std::size_t bytes) const {
        const FilePath file = home / relative;
        OpenFolder(file.parent()).write(file.lastComponent(), bytes);
    }
    template <class Case>
    void expectFailure(const FilePath& path) {
        try {
            static_cast<void>(measure(path));
            ADD_FAILURE() << "no failure";
        } catch (const CairnfieldError& error) {
            ASSERT_NE(error.as<Case>(), nullptr) << error.what();
            EXPECT_EQ(error.as<Case>()->path, path.bytes());
        }
    }
};

TEST_F(TreeMeasurerTest, AnEmptyDirectoryHoldsNothing) {
    const DirectoryScanResult result = measure(root);
    EXPECT_EQ(result.url, root);
    EXPECT_EQ(totalsOf(result), (OracleTotals{0, 0}));
    EXPECT_TRUE(result.largestChildren.empty());
    EXPECT_TRUE(result.permissionErrorPaths.empty());
    EXPECT_TRUE(result.isEstimated);
    EXPECT_GT(result.duration, 0);
}

TEST_F(TreeMeasurerTest, APlainFileIsWeighedAlone) {
    reserve("root/file", 70000);
    const DirectoryScanResult result = measure(root.appending("file"));
    EXPECT_EQ(result.fileCount, 1);
    EXPECT_EQ(result.totalBytes, measure.allocatedSize(root.appending("file")));
    EXPECT_GE(result.totalBytes, 70000);
    EXPECT_EQ(result.duration, 0);
    EXPECT_TRUE(result.largestChildren.empty());
    EXPECT_TRUE(result.isEstimated);
}

TEST_F(TreeMeasurerTest, ThePathIsStandardizedFirst) {
    reserve("root/file", 5000);
    EXPECT_EQ(measure(FilePath(root.bytes() + "//./x/../")).url, root);
}

TEST_F(TreeMeasurerTest, NothingAtThePathIsPathMissing) {
    expectFailure<CairnfieldError::PathMissing>(root.appending("nothing"));
    reserve("root/file", 1);
    expectFailure<CairnfieldError::PathMissing>(root.appending("file/inside"));
    std::filesystem::create_symlink("nowhere", root.appending("dangling").bytes());
    expectFailure<CairnfieldError::PathMissing>(root.appending("dangling"));
}

TEST_F(TreeMeasurerTest, LinksCountNeitherAsSizeNorAsFileAndAreNotFollowed) {
    reserve("big/file", 1 << 20);
    std::filesystem::create_directory_symlink(home.path().appending("big").bytes(),
                                              root.appending("link").bytes());
    std::filesystem::create_symlink(std::string(3000, 'x'), root.appending("long").bytes());
    std::filesystem::create_symlink(".", root.appending("loop").bytes());
    const DirectoryScanResult result = measure(root);
    EXPECT_EQ(totalsOf(result), (OracleTotals{0, 0}));
    EXPECT_TRUE(result.largestChildren.empty());
}

TEST_F(TreeMeasurerTest, ARootThatIsALinkToADirectoryIsFollowed) {
    reserve("root/file", 5000);
    const FilePath link = home.path().appending("link");
    std::filesystem::create_directory_symlink(root.bytes(), link.bytes());
    const DirectoryScanResult result = measure(link);
    EXPECT_EQ(result.fileCount, 1);
    ASSERT_EQ(result.largestChildren.size(), 1U);
    EXPECT_EQ(result.largestChildren[0].url, link.appending("file"));
}

TEST_F(TreeMeasurerTest, BlocksCountNotLengthAndUnderEveryHardLink) {
    reserve("root/plain", 12345);
    std::filesystem::create_hard_link(root.appending("plain").bytes(), root.appending("again").bytes());
    std::filesystem::resize_file(home.write("root/sparse", "x").bytes(), std::uintmax_t{1} << 33);
    const DirectoryScanResult result = measure(root);
    EXPECT_EQ(totalsOf(result), oracleTotals(root));
    EXPECT_EQ(result.fileCount, 3);
    EXPECT_LT(result.totalBytes, 1 << 20);
}

TEST_F(TreeMeasurerTest, ListsTheTwelveLargestOfManyChildrenWithEverythingBelowThem) {
    for (int i = 0; i < 30; ++i)
        reserve("root/child" + std::to_string(i) + "/deep/file", static_cast<std::size_t>(4096 * (i + 1)));
    reserve("root/single", 1 << 20);
    const DirectoryScanResult result = measure(root);
    ASSERT_EQ(result.largestChildren.size(), 12U);
    EXPECT_EQ(result.largestChildren[0].url, root.appending("single"));
    EXPECT_FALSE(result.largestChildren[0].isDirectory);
    for (std::size_t i = 1; i < 12; ++i) {
        const FilePath child = root.appending("child" + std::to_string(30 - i));
        EXPECT_EQ(result.largestChildren[i].url, child);
        EXPECT_TRUE(result.largestChildren[i].isDirectory);
        const std::int64_t itself = measure.allocatedSize(child);
        EXPECT_EQ(result.largestChildren[i].bytes, measure(child).totalBytes + itself);
    }
}

TEST_F(TreeMeasurerTest, OddNamesAndOddKindsOfFilesAreCarriedThrough) {
    const OpenFolder folder(root);
    for (const std::string& name :
         {std::string("not-utf8-\xff\xfe"), std::string("new\nline"), std::string(" lead"),
          std::string("-rf"), std::string("\\back"), std::string(254, 'n')}) {
        folder.write(name + "f", 100);
        folder.makeFolder(name + "d").write("inside", 5000);
    }
    ASSERT_EQ(mkfifoat(folder.descriptor(), "fifo", 0600), 0);
    const int socketDescriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string socketPath = root.appending("s").bytes();
    ASSERT_LT(socketPath.size(), sizeof address.sun_path);
    socketPath.copy(address.sun_path, socketPath.size());
    ASSERT_EQ(bind(socketDescriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(socketDescriptor);
    const DirectoryScanResult result = measure(root);
    EXPECT_EQ(totalsOf(result), oracleTotals(root));
    EXPECT_NE(std::find_if(result.largestChildren.begin(), result.largestChildren.end(),
                           [&](const ChildSize& child) {
                               return child.url == root.appending(
                                                       "not-utf8-\xff\xfe"
                                                       "d");
                           }),
              result.largestChildren.end());
}

TEST_F(TreeMeasurerTest, ADirectoryThatCannotBeEnteredIsListedAndWeighedAndTheWalkGoesOn) {
    reserve("root/open/file", 9000);
    reserve("root/locked/secret", 9000);
    reserve("root/open/searchless/file", 9000);
    std::filesystem::permissions(home.path().bytes(), std::filesystem::perms(0755));
    std::filesystem::permissions(root.appending("locked").bytes(), std::filesystem::perms::none);
    std::filesystem::permissions(root.appending("open/searchless").bytes(), std::filesystem::perms(0444));
    const std::int64_t lockedItself = measure.allocatedSize(root.appending("locked"));
    const std::string answer = asUnprivilegedUser([&] {
        Measuring own;
        const DirectoryScanResult result = own(root);
        std::string text;
        for (const FilePath& path : result.permissionErrorPaths) text += path.bytes() + "\n";
        for (const ChildSize& child : result.largestChildren)
            if (child.url == root.appending("locked"))
                text += std::to_string(child.bytes) + (child.isDirectory ? " d" : " f");
        return text + " " + std::to_string(result.fileCount) +
               (totalsOf(result).bytes == oracleTotals(root).bytes ? " same" : " differs");
    });
    // The file in the directory without search permission is known by name alone: it counts, and weighs
    // nothing.
    EXPECT_EQ(answer, root.appending("locked").bytes() + "\n" + std::to_string(lockedItself) + " d 2 same");
}

TEST_F(TreeMeasurerTest, ARootThatCannotBeListedIsPermissionDenied) {
    const FilePath locked = home.makeDirectory("root/locked");
    const FilePath inside = home.makeDirectory("root/locked/inside");
    std::filesystem::permissions(home.path().bytes(), std::filesystem::perms(0755));
    std::filesystem::permissions(locked.bytes(), std::filesystem::perms::none);
    for (const FilePath& path : {locked, inside}) {
        const std::string answer = asUnprivilegedUser([&path] {
            Measuring own;
            try {
                static_cast<void>(own(path));
            } catch (const CairnfieldError& error) {
                return std::string(error.caseName());
            }
            return std::string("no failure");
        });
        EXPECT_EQ(answer, "permissionDenied");
    }
}

TEST_F(TreeMeasurerTest, TheSizeOfOneItemIsItsOwnAndThatOfNothingThrows) {
    reserve("root/file", 5000);
    std::filesystem::create_symlink("file", root.appending("link").bytes());
    EXPECT_EQ(measure.allocatedSize(root.appending("file")), 8192);
    EXPECT_EQ(measure.allocatedSize(root.appending("link")), 0);
    EXPECT_THROW(static_cast<void>(measure.allocatedSize(root.appending("nothing"))), std::system_error);
}

TEST_F(TreeMeasurerTest, AWalkThatWasStoppedBeforeItBeganThrowsCancelled) {
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(static_cast<void>(measure(root, source.get_token())), Cancelled);
}

}  // namespace
}  // namespace cairnfield
