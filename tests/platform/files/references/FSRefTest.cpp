#include "platform/files/references/FSRef.h"
#include "platform/files/references/ItemReferences.h"
#include "tests/platform/files/references/References.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/TemporaryFolder.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mac::test {
namespace {

TEST(FSRef, LeadsBackToItsItem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    EXPECT_EQ(pathOf(referenceTo(file)), file);
    EXPECT_EQ(pathOf(referenceTo(folder.path())), folder.path());
    EXPECT_EQ(pathOf(referenceTo("/")), "/");
    EXPECT_TRUE(itemOfReference(referenceTo(folder.path() + "/")).value().isFolder);
    EXPECT_FALSE(itemOfReference(referenceTo(file)).value().isFolder);
    EXPECT_FALSE(referenceToPath(folder.path("none"), LinkAtEnd::IsFollowed).hasValue());
    EXPECT_FALSE(referenceToPath("", LinkAtEnd::IsFollowed).hasValue());
}

TEST(FSRef, IsTheSameForTheSameItem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("a/file", "");
    ASSERT_EQ(::symlink(file.c_str(), folder.path("link").c_str()), 0);
    EXPECT_TRUE(referenceTo(file) == referenceTo(folder.path("a/../a/./file")));
    EXPECT_TRUE(referenceTo(file) == referenceTo(folder.path("link")));
    EXPECT_FALSE(referenceTo(file) == referenceTo(folder.makeFile("b", "")));
    EXPECT_FALSE(referenceTo(file) == referenceToPath(folder.path("link"), LinkAtEnd::IsNotFollowed).value());
    EXPECT_EQ(pathOf(referenceToPath(folder.path("link"), LinkAtEnd::IsNotFollowed).value()), folder.path("link"));
}

TEST(FSRef, FollowsRenamesAndMoves) {
    TemporaryFolder const folder;
    FSRef const file = referenceTo(folder.makeFile("a/b/file", ""));
    FSRef const inner = referenceTo(folder.path("a/b"));
    folder.makeFolder("c");
    ASSERT_EQ(::rename(folder.path("a/b/file").c_str(), folder.path("a/renamed").c_str()), 0);
    EXPECT_EQ(pathOf(file), folder.path("a/renamed"));
    ASSERT_EQ(::rename(folder.path("a").c_str(), folder.path("c/a").c_str()), 0);
    EXPECT_EQ(pathOf(file), folder.path("c/a/renamed"));
    EXPECT_EQ(pathOf(inner), folder.path("c/a/b"));
}

TEST(FSRef, FollowsALinkThatIsMovedAndNotWhatItLeadsTo) {
    TemporaryFolder const folder;
    folder.makeFile("target", "");
    ASSERT_EQ(::symlink("target", folder.path("link").c_str()), 0);
    FSRef const link = referenceToPath(folder.path("link"), LinkAtEnd::IsNotFollowed).value();
    ASSERT_EQ(::rename(folder.path("link").c_str(), folder.path("moved").c_str()), 0);
    EXPECT_EQ(pathOf(link), folder.path("moved"));
    ASSERT_EQ(::symlink("nowhere", folder.path("lost").c_str()), 0);
    EXPECT_FALSE(referenceToPath(folder.path("lost"), LinkAtEnd::IsFollowed).hasValue());
    EXPECT_TRUE(referenceToPath(folder.path("lost"), LinkAtEnd::IsNotFollowed).hasValue());
}

TEST(FSRef, IsNeverAnotherItem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    FSRef const reference = referenceTo(file);
    ASSERT_EQ(::unlink(file.c_str()), 0);
    EXPECT_EQ(pathOf(reference), "-");
    for (int index = 0; index < 50; ++index) {
        folder.makeFile("file", "another");
        EXPECT_EQ(pathOf(reference), "-");
        folder.makeFile("replacement", "a third");
        ASSERT_EQ(::rename(folder.path("replacement").c_str(), file.c_str()), 0);
        EXPECT_EQ(pathOf(reference), "-");
        ASSERT_EQ(::unlink(file.c_str()), 0);
    }
}

TEST(FSRef, OfARemovedItemIsKnownByMoreThanItsName) {
    TemporaryFolder const folder;
    FSRef const odd = referenceTo(folder.makeFile("file (deleted)", ""));
    FSRef const plain = referenceTo(folder.makeFile("file", ""));
    EXPECT_EQ(pathOf(odd), folder.path("file (deleted)"));
    ASSERT_EQ(::unlink(folder.path("file").c_str()), 0);
    EXPECT_EQ(pathOf(plain), "-");
    EXPECT_EQ(pathOf(odd), folder.path("file (deleted)"));
}

TEST(FSRef, OfAFileWithAnotherNameFindsThatInItsFolder) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    FSRef const reference = referenceTo(file);
    ASSERT_EQ(::link(file.c_str(), folder.path("other").c_str()), 0);
    ASSERT_EQ(::unlink(file.c_str()), 0);
    EXPECT_EQ(pathOf(reference), folder.path("other"));
}

TEST(FSRef, ThatNobodyMadeLeadsNowhere) {
    FSRef reference{};
    EXPECT_EQ(pathOf(reference), "-");
    TemporaryFolder const folder;
    FSRef const good = referenceTo(folder.makeFile("file", ""));
    for (std::size_t index = 0; index < good.hidden.size(); ++index) {
        reference = good;
        reference.hidden[index] ^= static_cast<std::uint8_t>(1U << index % 8);
        EXPECT_EQ(pathOf(reference), "-") << index;
    }
    reference.hidden.fill(0xA5);
    EXPECT_EQ(pathOf(reference), "-");
}

TEST(FSRef, TakesNamesThatAreNotUTF8AndLongPaths) {
    TemporaryFolder const folder;
    std::string const odd = folder.makeFile("n\xE9 \xFF\n", "");
    EXPECT_EQ(pathOf(referenceTo(odd)), odd);
    LongFolder longFolder;
    longFolder.makeFile("file", "");
    std::string const file = longFolder.path() + "/file";
    FSRef const reference = referenceTo(file);
    EXPECT_EQ(pathOf(reference), file);
    EXPECT_EQ(pathOf(referenceTo(longFolder.path())), longFolder.path());
    EXPECT_FALSE(referenceToPath(file + "2", LinkAtEnd::IsFollowed).hasValue());
}

TEST(FSRef, ToALongPathIsFoundHoweverItWasMade) {
    LongFolder longFolder;
    longFolder.makeFile("file", "");
    longFolder.makeFolder("inner");
    std::string const& path = longFolder.path();
    EXPECT_EQ(pathOf(referenceTo(path + "/inner/")), path + "/inner");
    EXPECT_EQ(pathOf(referenceTo(path + "/inner/../inner/.")), path + "/inner");
    EXPECT_EQ(pathOf(referenceTo(path + "/inner/../file")), path + "/file");
    // Through a link at the front, which is short enough for the system.
    TemporaryFolder const folder;
    std::size_t const second = path.find('/', path.find('/', 1) + 1);
    std::size_t const third = path.find('/', second + 1);
    ASSERT_EQ(::symlink(path.substr(0, third).c_str(), folder.path("link").c_str()), 0);
    std::string const throughLink = folder.path("link") + path.substr(third) + "/file";
    EXPECT_EQ(pathOf(referenceTo(throughLink)), path + "/file");
    EXPECT_EQ(pathOf(referenceToPath(throughLink, LinkAtEnd::IsNotFollowed).value()), path + "/file");
}

TEST(FSRef, ToALongRelativePathIsFoundFromElsewhere) {
    LongFolder longFolder;
    longFolder.makeFile("file", "");
    std::string const& path = longFolder.path();
    std::size_t const slash = path.find('/', path.find('/', 1) + 1);
    std::unique_ptr<char, decltype(&std::free)> const before(::getcwd(nullptr, 0), &std::free);
    ASSERT_EQ(::chdir(path.substr(0, slash).c_str()), 0);
    FSRef const reference = referenceTo(path.substr(slash + 1) + "/file");
    ASSERT_EQ(::chdir(before.get()), 0);
    EXPECT_EQ(pathOf(reference), path + "/file");
}

TEST(FSRef, IsMadeAndFoundOnManyThreads) {
    TemporaryFolder const folder;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&folder, number] {
            for (int index = 0; index < 100; ++index) {
                std::string const name = std::to_string(number) + "/" + std::to_string(index);
                std::string const file = folder.makeFile(name, "");
                EXPECT_EQ(pathOf(referenceTo(file)), file);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST(FSRef, IsMadeFromAFileURLAndBecomesOne) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("a b/f%", "");
    NSURL const url = NSURL::fileURLWithPath_(NSString::stringWithFileSystemRepresentation_(file));
    FSRef reference{};
    ASSERT_TRUE(CFURLGetFSRef(url, &reference));
    EXPECT_TRUE(reference == referenceTo(file));
    NSURL const back = CFURLCreateFromFSRef(kCFAllocatorDefault, &reference);
    EXPECT_TRUE(back.isEqual_(url));
    EXPECT_FALSE(CFURLHasDirectoryPath(back));
    reference = referenceTo(folder.path("a b"));
    EXPECT_TRUE(CFURLHasDirectoryPath(CFURLCreateFromFSRef(kCFAllocatorDefault, &reference)));
}

TEST(FSRef, IsMadeFromAURLOfThisComputer) {
    for (NSURL const& url : {NSURL::URLWithString_("file:///tmp"), NSURL::URLWithString_("file://localhost/tmp"),
                             NSURL::URLWithString_("file://LocalHost/tmp")}) {
        FSRef reference{};
        EXPECT_TRUE(CFURLGetFSRef(url, &reference));
        EXPECT_TRUE(reference == referenceTo("/tmp"));
    }
}

TEST(FSRef, IsZeroWhereTheURLLeadsNowhere) {
    TemporaryFolder const folder;
    NSString const none = NSString::stringWithFileSystemRepresentation_(folder.path("none"));
    for (NSURL const& url : {NSURL(nil), NSURL::fileURLWithPath_(none), NSURL::URLWithString_("http://host/tmp"),
                             NSURL::URLWithString_("file:///a%00b"), NSURL::URLWithString_("file://elsewhere/tmp"),
                             NSURL::URLWithString_("")}) {
        FSRef reference = referenceTo("/");
        EXPECT_FALSE(CFURLGetFSRef(url, &reference));
        EXPECT_TRUE(reference == FSRef{});
    }
    EXPECT_FALSE(CFURLGetFSRef(NSURL::fileURLWithPath_("/"), nullptr));
    EXPECT_TRUE(CFURLCreateFromFSRef(kCFAllocatorDefault, nullptr) == nil);
    FSRef const nothing{};
    EXPECT_TRUE(CFURLCreateFromFSRef(kCFAllocatorDefault, &nothing) == nil);
}

} // namespace
} // namespace mac::test
