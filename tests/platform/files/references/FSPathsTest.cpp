#include "platform/files/references/FSRef.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <array>
#include <cerrno>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {
namespace {

std::uint8_t const* bytes(std::string const& path) { return reinterpret_cast<std::uint8_t const*>(path.c_str()); }

std::string pathMadeFrom(FSRef const& reference) {
    std::array<std::uint8_t, 4096> path{};
    if (FSRefMakePath(&reference, path.data(), path.size()) != noErr) return "-";
    return reinterpret_cast<char const*>(path.data());
}

FSRef referenceMadeFrom(std::string const& path) {
    FSRef reference{};
    EXPECT_EQ(FSPathMakeRef(bytes(path), &reference, nullptr), noErr) << path;
    return reference;
}

OSErr makeReference(FSRef const& folder, std::u16string const& name, FSRef& reference) {
    return FSMakeFSRefUnicode(&folder, static_cast<std::uint32_t>(name.size()), name.data(), 0xFFFF, &reference);
}

TEST(FSPathMakeRef, MakesAReferenceWithLinksFollowedOrNot) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("folder/file", "");
    std::string const link = folder.path("link");
    ASSERT_EQ(::symlink("folder", link.c_str()), 0);
    FSRef reference{};
    bool isDirectory = true;
    EXPECT_EQ(FSPathMakeRef(bytes(file), &reference, &isDirectory), noErr);
    EXPECT_FALSE(isDirectory);
    EXPECT_EQ(pathMadeFrom(reference), file);
    EXPECT_EQ(FSPathMakeRef(bytes(link), &reference, &isDirectory), noErr);
    EXPECT_TRUE(isDirectory);
    EXPECT_EQ(pathMadeFrom(reference), folder.path("folder"));
    EXPECT_EQ(FSPathMakeRefWithOptions(bytes(link), kFSPathMakeRefDoNotFollowLeafSymlink, &reference, &isDirectory),
              noErr);
    EXPECT_FALSE(isDirectory);
    EXPECT_EQ(pathMadeFrom(reference), link);
}

TEST(FSPathMakeRef, SaysWhyThereIsNone) {
    TemporaryFolder const folder;
    FSRef reference = referenceMadeFrom("/");
    bool isDirectory = true;
    EXPECT_EQ(FSPathMakeRef(bytes(folder.path("none")), &reference, &isDirectory), fnfErr);
    EXPECT_TRUE(reference == FSRef{});
    EXPECT_FALSE(isDirectory);
    EXPECT_EQ(FSPathMakeRef(bytes(folder.path(std::string(256, 'n'))), &reference, nullptr), errFSNameTooLong);
    EXPECT_EQ(FSPathMakeRef(bytes(""), &reference, nullptr), fnfErr);
    EXPECT_EQ(FSPathMakeRef(nullptr, &reference, nullptr), paramErr);
    EXPECT_EQ(FSPathMakeRef(bytes("/"), nullptr, nullptr), paramErr);
    EXPECT_EQ(FSPathMakeRefWithOptions(bytes("/"), 2, &reference, nullptr), paramErr);
}

TEST(FSRefMakePath, NeedsRoomForThePathAndItsEnd) {
    TemporaryFolder const folder;
    FSRef const reference = referenceMadeFrom(folder.path());
    std::vector<std::uint8_t> path(folder.path().size() + 1, '?');
    EXPECT_EQ(FSRefMakePath(&reference, path.data(), static_cast<std::uint32_t>(path.size() - 1)), pathTooLongErr);
    EXPECT_EQ(path[0], '?');
    EXPECT_EQ(FSRefMakePath(&reference, path.data(), static_cast<std::uint32_t>(path.size())), noErr);
    EXPECT_EQ(reinterpret_cast<char const*>(path.data()), folder.path());
    FSRef const nothing{};
    EXPECT_EQ(FSRefMakePath(&nothing, path.data(), 10), fnfErr);
    EXPECT_EQ(FSRefMakePath(nullptr, path.data(), 10), paramErr);
    EXPECT_EQ(FSRefMakePath(&reference, nullptr, 10), paramErr);
}

TEST(FSMakeFSRefUnicode, FindsANameInAFolder) {
    TemporaryFolder const folder;
    folder.makeFile("12:30", "");
    ASSERT_EQ(::symlink("nowhere", folder.path("lost").c_str()), 0);
    FSRef const parent = referenceMadeFrom(folder.path());
    FSRef reference{};
    EXPECT_EQ(makeReference(parent, u"12/30", reference), noErr);
    EXPECT_EQ(pathMadeFrom(reference), folder.path("12:30"));
    EXPECT_EQ(makeReference(parent, u"lost", reference), noErr);
    EXPECT_EQ(pathMadeFrom(reference), folder.path("lost"));
}

TEST(FSMakeFSRefUnicode, SaysWhyThereIsNone) {
    TemporaryFolder const folder;
    FSRef const parent = referenceMadeFrom(folder.path());
    FSRef const file = referenceMadeFrom(folder.makeFile("file", ""));
    FSRef reference = parent;
    EXPECT_EQ(makeReference(parent, u"none", reference), fnfErr);
    EXPECT_TRUE(reference == FSRef{});
    EXPECT_EQ(makeReference(parent, u"a:b", reference), bdNamErr);
    EXPECT_EQ(makeReference(parent, u"..", reference), bdNamErr);
    EXPECT_EQ(makeReference(parent, u"\xD800", reference), bdNamErr);
    EXPECT_EQ(makeReference(parent, std::u16string(256, u'n'), reference), errFSNameTooLong);
    EXPECT_EQ(makeReference(parent, std::u16string(255, u'日'), reference), errFSNameTooLong);
    EXPECT_EQ(makeReference(parent, u"", reference), paramErr);
    EXPECT_EQ(makeReference(file, u"file", reference), errFSNotAFolder);
    EXPECT_EQ(makeReference(FSRef{}, u"file", reference), errFSBadFSRef);
    EXPECT_EQ(FSMakeFSRefUnicode(nullptr, 1, u"a", 0, &reference), paramErr);
    EXPECT_EQ(FSMakeFSRefUnicode(&parent, 1, nullptr, 0, &reference), paramErr);
    EXPECT_EQ(FSMakeFSRefUnicode(&parent, 1, u"a", 0, nullptr), paramErr);
}

TEST(FSMakeFSRefUnicode, LooksIntoTheFolderItselfHoweverLongItsPath) {
    LongFolder longFolder;
    longFolder.makeFile("file", "");
    FSRef const parent = referenceMadeFrom(longFolder.path());
    FSRef const file = referenceMadeFrom(longFolder.path() + "/file");
    FSRef reference{};
    EXPECT_EQ(makeReference(parent, u"file", reference), noErr);
    EXPECT_TRUE(reference == file);
    TemporaryFolder const folder;
    FSRef const inner = referenceMadeFrom(folder.makeFolder("inner"));
    folder.makeFile("inner/file", "");
    ASSERT_EQ(::rename(folder.path("inner").c_str(), folder.path("moved").c_str()), 0);
    folder.makeFile("inner/file", "another");
    EXPECT_EQ(makeReference(inner, u"file", reference), noErr);
    EXPECT_EQ(pathMadeFrom(reference), folder.path("moved/file"));
}

TEST(FSMakeFSRefUnicode, KnowsAFolderThatIsGone) {
    TemporaryFolder const folder;
    std::string const inner = folder.makeFolder("inner");
    FSRef const parent = referenceMadeFrom(inner);
    ASSERT_EQ(::rmdir(inner.c_str()), 0);
    folder.makeFile("inner/file", "");
    FSRef reference{};
    EXPECT_EQ(makeReference(parent, u"file", reference), errFSBadFSRef);
}

// Runs the work where the system refuses every call that opens a file.
void withRefusedOpening(int errorNumber, std::function<void()> const& work) {
    withRefusedCall(SYS_openat2, ENOSYS, [&] { withRefusedCall(SYS_openat, errorNumber, work); });
}

struct Refusal {
    int errorNumber;
    OSErr answer;
};

class RefusedReferences : public testing::TestWithParam<Refusal> {};

TEST_P(RefusedReferences, SayWhy) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "");
    FSRef const parent = referenceMadeFrom(folder.path());
    withRefusedOpening(GetParam().errorNumber, [&] {
        FSRef reference = parent;
        EXPECT_EQ(FSPathMakeRef(bytes(file), &reference, nullptr), GetParam().answer);
        EXPECT_TRUE(reference == FSRef{});
        EXPECT_EQ(makeReference(parent, u"file", reference), GetParam().answer);
    });
}

INSTANTIATE_TEST_SUITE_P(FSPaths, RefusedReferences,
                         testing::Values(Refusal{EACCES, afpAccessDenied}, Refusal{EMFILE, tmfoErr}));

TEST(FSPathMakeRef, SaysWhatTheDiskSays) {
    for (Refusal const& refusal : {Refusal{EIO, ioErr}, Refusal{ENOMEM, memFullErr}, Refusal{ENXIO, nsvErr},
                                   Refusal{EPERM, afpAccessDenied}, Refusal{ELOOP, fnfErr}}) {
        // An item that is held already need not be opened.
        TemporaryFolder const folder;
        std::string const file = folder.makeFile("file", "");
        withRefusedOpening(refusal.errorNumber, [&] {
            FSRef reference{};
            EXPECT_EQ(FSPathMakeRef(bytes(file), &reference, nullptr), refusal.answer) << refusal.errorNumber;
        });
        withRefusedCall(SYS_statx, refusal.errorNumber, [&] {
            FSRef reference{};
            EXPECT_EQ(FSPathMakeRef(bytes(file), &reference, nullptr), refusal.answer) << refusal.errorNumber;
        });
    }
}

TEST(FSPathMakeRef, LooksIntoNoFolderThatIsForbidden) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("closed/file", "");
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(folder.path("closed").c_str(), 0), 0);
    {
        OrdinaryUser const user;
        FSRef reference{};
        EXPECT_EQ(FSPathMakeRef(bytes(file), &reference, nullptr), afpAccessDenied);
    }
    ASSERT_EQ(::chmod(folder.path("closed").c_str(), 0700), 0);
}

TEST(FSCompareFSRefs, TellsTheSameItem) {
    TemporaryFolder const folder;
    FSRef const file = referenceMadeFrom(folder.makeFile("file", ""));
    FSRef const again = referenceMadeFrom(folder.path("./file"));
    FSRef const other = referenceMadeFrom(folder.path());
    FSRef const nothing{};
    EXPECT_EQ(FSCompareFSRefs(&file, &again), noErr);
    EXPECT_EQ(FSCompareFSRefs(&file, &other), errFSRefsDifferent);
    EXPECT_EQ(FSCompareFSRefs(&file, &nothing), errFSBadFSRef);
    EXPECT_EQ(FSCompareFSRefs(nullptr, &file), paramErr);
}

} // namespace
} // namespace mac::test
