#include "platform/files/Forks.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/files/references/ItemReferences.h"
#include "tests/platform/files/Attributes.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

constexpr std::uint32_t BlockSize = 1'024;

OSErr openFork(std::string const& path, HFSUniStr255 const& name, std::int16_t& number) {
    FSRef const ref = referenceToPath(path, LinkAtEnd::IsNotFollowed).valueOr(FSRef{});
    return FSOpenFork(&ref, name.length, name.unicode.data(), fsRdPerm, &number);
}

std::int16_t openData(std::string const& path) {
    HFSUniStr255 name{};
    std::int16_t number = -1;
    EXPECT_EQ(FSGetDataForkName(&name), noErr);
    EXPECT_EQ(openFork(path, name, number), noErr);
    return number;
}

OSErr openResource(std::string const& path, std::int16_t& number) {
    HFSUniStr255 name{};
    EXPECT_EQ(FSGetResourceForkName(&name), noErr);
    return openFork(path, name, number);
}

struct Read {
    OSErr status;
    std::string bytes;

    bool operator==(Read const&) const = default;
};

Read readNext(std::int16_t fork, std::uint32_t count = BlockSize, std::uint16_t mode = fsFromMark,
              std::int64_t offset = 0) {
    std::string bytes(count, '\0');
    std::uint32_t actual = 0xFFFF;
    OSErr const status = FSReadFork(fork, mode, offset, count, bytes.data(), &actual);
    bytes.resize(actual);
    return {status, bytes};
}

TEST(Forks, AreReadInBlocksToTheirEnd) {
    TemporaryFolder const folder;
    for (std::size_t const size : {std::size_t{0}, std::size_t{1}, std::size_t{1'023}, std::size_t{1'024},
                                   std::size_t{1'025}, std::size_t{300'000}}) {
        std::string const contents = bytesOfLength(size);
        std::int16_t const fork = openData(folder.makeFile("file", contents));
        ASSERT_GT(fork, 0);
        std::int64_t found = -1;
        EXPECT_EQ(FSGetForkSize(fork, &found), noErr);
        EXPECT_EQ(found, static_cast<std::int64_t>(size));
        std::string all;
        for (std::size_t rest = size; rest >= BlockSize; rest -= BlockSize) {
            Read const read = readNext(fork);
            EXPECT_EQ(read.status, noErr);
            all += read.bytes;
        }
        Read const last = readNext(fork);
        EXPECT_EQ(last.status, eofErr);
        EXPECT_EQ(last.bytes.size(), size % BlockSize);
        EXPECT_TRUE(all + last.bytes == contents);
        EXPECT_EQ(readNext(fork), (Read{eofErr, ""}));
        EXPECT_EQ(FSCloseFork(fork), noErr);
    }
}

TEST(Forks, AreReadFromAnyPlace) {
    TemporaryFolder const folder;
    std::string const contents = bytesOfLength(400'000);
    std::int16_t const fork = openData(folder.makeFile("file", contents));
    EXPECT_EQ(readNext(fork, 10, fsFromStart, 5), (Read{noErr, contents.substr(5, 10)}));
    EXPECT_EQ(readNext(fork, 10, fsAtMark, 99), (Read{noErr, contents.substr(15, 10)}));
    EXPECT_EQ(readNext(fork, 10, fsFromMark, -20), (Read{noErr, contents.substr(5, 10)}));
    EXPECT_EQ(readNext(fork, 10, fsFromLEOF, -4), (Read{eofErr, contents.substr(contents.size() - 4)}));
    EXPECT_EQ(readNext(fork, 300'000, fsFromStart, 131'070), (Read{eofErr, contents.substr(131'070)}));
    EXPECT_EQ(readNext(fork, 200'000, fsFromStart, 1), (Read{noErr, contents.substr(1, 200'000)}));
    EXPECT_EQ(readNext(fork, 3, fsFromStart, 131'071), (Read{noErr, contents.substr(131'071, 3)}));
    EXPECT_EQ(readNext(fork, 1, fsFromStart, -1).status, posErr);
    EXPECT_EQ(readNext(fork, 1, fsFromMark, std::numeric_limits<std::int64_t>::max()).status, posErr);
    EXPECT_EQ(readNext(fork, 1, fsFromStart, 500'000), (Read{eofErr, ""}));
    EXPECT_EQ(readNext(fork, 1, 4).status, errFSBadPosMode);
    EXPECT_EQ(readNext(fork, 0, fsFromStart, 0), (Read{noErr, ""}));
    EXPECT_EQ(FSCloseFork(fork), noErr);
}

TEST(Forks, OfResourcesAreThereIfTheFileHasThem) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "data");
    std::int16_t fork = 7;
    EXPECT_EQ(openResource(file, fork), errFSForkNotFound);
    EXPECT_EQ(fork, -1);
    ASSERT_EQ(setxattr(file.c_str(), XATTR_RESOURCEFORK_NAME, "resources", 9, 0, 0), 0);
    EXPECT_EQ(openResource(file, fork), noErr);
    EXPECT_EQ(readNext(fork), (Read{eofErr, "resources"}));
    std::int64_t size = 0;
    EXPECT_EQ(FSGetForkSize(fork, &size), noErr);
    EXPECT_EQ(size, 9);
    EXPECT_EQ(FSCloseFork(fork), noErr);
}

TEST(Forks, OfALinkAreItsText) {
    TemporaryFolder const folder;
    folder.makeFile("target", "contents");
    ASSERT_EQ(::symlink("target", folder.path("link").c_str()), 0);
    std::int16_t fork = openData(folder.path("link"));
    EXPECT_EQ(readNext(fork), (Read{eofErr, "target"}));
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(openResource(folder.path("link"), fork), errFSForkNotFound);
}

TEST(Forks, OfWhatIsNoFileCannotBeOpened) {
    TemporaryFolder const folder;
    HFSUniStr255 const data{};
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    std::int16_t fork = 7;
    EXPECT_EQ(openFork(folder.path("pipe"), data, fork), errFSForkNotFound);
    EXPECT_EQ(openFork(folder.path(), data, fork), errFSForkNotFound);
    EXPECT_EQ(openResource(folder.path(), fork), errFSForkNotFound);
    EXPECT_EQ(openFork(folder.path("none"), data, fork), errFSBadFSRef);
    EXPECT_EQ(fork, -1);
    std::string const file = folder.makeFile("file", "");
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(file.c_str(), 0), 0);
    OrdinaryUser const user;
    if (::geteuid() == 0) return;
    EXPECT_NE(openFork(file, data, fork), noErr);
}

TEST(Forks, AreRefusedWithWrongArguments) {
    TemporaryFolder const folder;
    FSRef const ref = referenceToPath(folder.makeFile("file", ""), LinkAtEnd::IsFollowed).value();
    std::int16_t fork = 7;
    EXPECT_EQ(FSGetDataForkName(nullptr), paramErr);
    EXPECT_EQ(FSGetResourceForkName(nullptr), paramErr);
    EXPECT_EQ(FSOpenFork(nullptr, 0, nullptr, fsRdPerm, &fork), paramErr);
    EXPECT_EQ(FSOpenFork(&ref, 1, nullptr, fsRdPerm, &fork), paramErr);
    EXPECT_EQ(FSOpenFork(&ref, 0, nullptr, fsRdPerm, nullptr), paramErr);
    EXPECT_EQ(FSOpenFork(&ref, 3, u"ODD", fsRdPerm, &fork), errFSBadForkName);
    EXPECT_EQ(FSOpenFork(&ref, 0, nullptr, 3, &fork), errFSOperationNotSupported);
    EXPECT_EQ(fork, -1);
    char byte = 0;
    std::int64_t size = 0;
    for (std::int16_t const none : {std::int16_t{-1}, std::int16_t{0}, std::int16_t{9'999}}) {
        EXPECT_EQ(FSGetForkSize(none, &size), rfNumErr);
        EXPECT_EQ(FSReadFork(none, fsFromMark, 0, 1, &byte, nullptr), rfNumErr);
        EXPECT_EQ(FSCloseFork(none), rfNumErr);
    }
    ASSERT_EQ(FSOpenFork(&ref, 0, nullptr, fsCurPerm, &fork), noErr);
    EXPECT_EQ(FSGetForkSize(fork, nullptr), paramErr);
    EXPECT_EQ(FSReadFork(fork, fsFromMark, 0, 1, nullptr, nullptr), paramErr);
    EXPECT_EQ(FSReadFork(fork, fsFromMark, 0, 1, &byte, nullptr), eofErr);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(FSCloseFork(fork), rfNumErr);
}

// Writes one byte of a file that is otherwise all zeros.
std::string makeSparse(TemporaryFolder const& folder, std::string const& name, off_t size, off_t place = -1) {
    std::string path = folder.makeFile(name, "");
    EXPECT_EQ(::truncate(path.c_str(), size), 0);
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    if (place >= 0) file.seekp(place).put('x');
    return path;
}

bool areEqual(std::string const& path, std::string const& other) {
    std::int16_t const one = openData(path);
    std::int16_t const two = openData(other);
    bool const isEqual = haveEqualBytes(one, two);
    EXPECT_EQ(haveEqualBytes(two, one), isEqual);
    FSCloseFork(one);
    FSCloseFork(two);
    return isEqual;
}

// Small ones are compared by one thread, large ones by two, which meet in the middle.
TEST(Forks, AreEqualByteByByteAtAnySize) {
    for (off_t const size : {off_t{0}, off_t{1}, off_t{131'072}, off_t{131'073}, (off_t{16} << 20) - 1, off_t{16} << 20,
                             (off_t{33} << 20) + 5}) {
        TemporaryFolder const folder;
        std::string const file = makeSparse(folder, "file", size);
        EXPECT_TRUE(areEqual(file, makeSparse(folder, "same", size))) << size;
        EXPECT_FALSE(areEqual(file, makeSparse(folder, "longer", size + 1))) << size;
        for (off_t const place : {off_t{0}, size / 2 - 1, size / 2, size / 4, size - size / 4, size - 1})
            if (place >= 0 && place < size) {
                EXPECT_FALSE(areEqual(file, makeSparse(folder, "other", size, place))) << size << ' ' << place;
            }
    }
}

TEST(Forks, ThatAreNotOpenAreNotEqual) {
    TemporaryFolder const folder;
    std::int16_t const fork = openData(folder.makeFile("file", "x"));
    EXPECT_FALSE(haveEqualBytes(fork, -1));
    EXPECT_FALSE(haveEqualBytes(-1, fork));
    EXPECT_TRUE(haveEqualBytes(fork, fork));
    EXPECT_EQ(readNext(fork), (Read{eofErr, "x"})) << "marks stay";
    FSCloseFork(fork);
}

TEST(Forks, HaveNumbersThatAreFree) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "x");
    std::int16_t const first = openData(file);
    std::int16_t const second = openData(file);
    std::int16_t const third = openData(file);
    EXPECT_NE(first, second);
    EXPECT_NE(second, third);
    EXPECT_EQ(FSCloseFork(second), noErr);
    EXPECT_EQ(readNext(third), (Read{eofErr, "x"}));
    EXPECT_EQ(openData(file), second);
    for (std::int16_t const fork : {first, second, third})
        EXPECT_EQ(FSCloseFork(fork), noErr);
}

} // namespace
} // namespace mac::test
