#include "platform/system/LongPath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/NewFile.h"
#include "platform/system/OpenItems.h"
#include "tests/support/Failures.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {
namespace {

// The code, operation and item of a failure, to be compared.
struct Told {
    int code;
    std::string operation;
    std::string item;

    bool operator==(Told const&) const = default;
};

void PrintTo(Told const& told, std::ostream* stream) {
    *stream << told.operation << " of " << told.item << ": " << told.code;
}

template <class T>
Told toldBy(Result<T> const& result) {
    if (result.hasValue()) return {};
    return {result.problem().code, result.problem().operation, result.problem().item};
}

class Failing : public testing::Test {
protected:
    TemporaryFolder const m_folder{};
    std::string const m_none{m_folder.path("none")};
    FileDescriptor const m_open{openPath(m_folder.path(), O_PATH | O_DIRECTORY).takeValue()};
};

TEST_F(Failing, OpeningTellsTheCodeAndThePath) {
    EXPECT_EQ(toldBy(openPath(m_none, O_RDONLY)), (Told{ENOENT, "open", m_none}));
    std::string const file = m_folder.makeFile("file", "");
    EXPECT_EQ(toldBy(openPath(file, O_RDONLY | O_DIRECTORY)), (Told{ENOTDIR, "open", file}));
    EXPECT_EQ(toldBy(fileStatusAtPath(m_none)), (Told{ENOENT, "stat", m_none}));
    EXPECT_EQ(toldBy(fileStatusInFolder(m_open, "none")), (Told{ENOENT, "stat", "none"}));
    EXPECT_EQ(toldBy(namesInFolder(m_none, LinkAtEnd::IsFollowed)), (Told{ENOENT, "open", m_none}));
}

TEST_F(Failing, OpeningALongPathTellsTheWholePath) {
    std::string const inner = m_none + std::string(PATH_MAX / 2, '/') + std::string(PATH_MAX / 2, 'n') + "/item";
    EXPECT_EQ(toldBy(openPath(inner, O_RDONLY)), (Told{ENOENT, "open", inner}));
    std::string const name(PATH_MAX + 1, 'n');
    EXPECT_EQ(toldBy(openPath(name, O_RDONLY)), (Told{ENAMETOOLONG, "open", name}));
    EXPECT_EQ(toldBy(fileStatusAtPath(name)), (Told{ENAMETOOLONG, "open", name}));
}

TEST_F(Failing, OpeningBelowAFolderTellsTheComponent) {
    m_folder.makeFolder("a/b");
    EXPECT_EQ(toldBy(openBelow(m_open, "a/none/c")), (Told{ENOENT, "open", "none"}));
    ASSERT_EQ(::symlink("a", m_folder.path("link").c_str()), 0);
    EXPECT_EQ(toldBy(openBelow(m_open, "link/b")), (Told{ENOTDIR, "open", "b"}));
    EXPECT_EQ(codeOf(openBelow(m_open, "a//b/")), 0);
}

TEST_F(Failing, ReadingTellsWhatIsNoFileOfThatSize) {
    std::string const file = m_folder.makeFile("file", "12345");
    EXPECT_EQ(readFileAtPath(file, 5).value().bytes.size(), 5U);
    EXPECT_EQ(toldBy(readFileAtPath(file, 4)), (Told{EFBIG, "read", file}));
    EXPECT_EQ(toldBy(readFileAtPath(m_folder.path(), 4)), (Told{EISDIR, "read", m_folder.path()}));
    std::string const pipe = m_folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(toldBy(readFileAtPath(pipe, 4)), (Told{EINVAL, "read", pipe}));
    EXPECT_EQ(toldBy(readFileAtPath(m_none, 4)), (Told{ENOENT, "stat", m_none}));
    FileDescriptor const open = openPath(file, O_RDONLY).takeValue();
    EXPECT_EQ(codeOf(readOpenFile(open, 4)), EFBIG);
    // The system tells no size of its own files: what is too large shows only while it is read.
    EXPECT_EQ(codeOf(readFileAtPath("/proc/self/status", 4)), EFBIG);
    withRefusedCall(SYS_read, EIO, [&] { EXPECT_EQ(toldBy(readFileAtPath(file, 5)), (Told{EIO, "read", file})); });
}

TEST_F(Failing, ReadingALinkTellsWhatIsNone) {
    m_folder.makeFile("file", "");
    EXPECT_EQ(toldBy(linkTextIn(m_open, "file")), (Told{EINVAL, "readlink", "file"}));
    EXPECT_EQ(toldBy(linkTextIn(m_open, "none")), (Told{ENOENT, "readlink", "none"}));
    EXPECT_NE(codeOf(linkText(m_open)), 0);
}

TEST_F(Failing, ListingTellsWhatTheSystemRefuses) {
    FileDescriptor const file = openPath(m_folder.makeFile("file", ""), O_RDONLY).takeValue();
    EXPECT_EQ(codeOf(entriesOf(file)), ENOTDIR);
    EXPECT_EQ(codeOf(namesInOpenFolder(file)), ENOTDIR);
    withRefusedCall(SYS_getdents64, EIO, [&] { EXPECT_EQ(codeOf(namesInOpenFolder(m_open)), EIO); });
}

TEST_F(Failing, ListingAFolderThatWasRemovedIsEmpty) {
    FileDescriptor const folder = openPath(m_folder.makeFolder("a"), O_RDONLY | O_DIRECTORY).takeValue();
    ASSERT_EQ(::rmdir(m_folder.path("a").c_str()), 0);
    EXPECT_TRUE(entriesOf(folder).value().empty());
}

TEST_F(Failing, FlushingIsDoneWhereFoldersCannotBeFlushed) {
    for (int const code : {EINVAL, EROFS, EOPNOTSUPP, ENOSYS})
        withRefusedCall(SYS_fsync, code, [&] { EXPECT_EQ(codeOf(flushFolder(m_open)), 0) << code; });
    withRefusedCall(SYS_fsync, EIO, [&] { EXPECT_EQ(codeOf(flushFolder(m_open)), EIO); });
}

TEST_F(Failing, DescendingTellsWhatHasVanished) {
    m_folder.makeFolder("a");
    TreeDescent descent(openBelow(m_open, "").takeValue());
    descent.enter(openBelow(m_open, "").takeValue(), {"a", "b"});
    ASSERT_TRUE(descent.next());
    EXPECT_EQ(codeOf(descent.item()), 0);
    ASSERT_TRUE(descent.next());
    EXPECT_EQ(toldBy(descent.item()), (Told{ENOENT, "open", "b"}));
}

TEST_F(Failing, ANewFileIsMadeWholeOrNotAtAll) {
    FileDescriptor const file = openPath(m_folder.makeFile("file", ""), O_PATH).takeValue();
    EXPECT_EQ(codeOf(NewFile::make(file, 0600)), ENOTDIR);
    withRefusedCall(SYS_getrandom, EIO, [&] { EXPECT_EQ(codeOf(NewFile::make(m_open, 0600)), EIO); });
    EXPECT_EQ(namesInOpenFolder(m_open).value().size(), 1U);
}

TEST_F(Failing, ANewFileGoesAwayUnlessItGetsItsName) {
    {
        Result<NewFile> made = NewFile::make(m_open, 0600);
        ASSERT_TRUE(made.hasValue());
        NewFile const moved = made.takeValue();
        EXPECT_EQ(namesInOpenFolder(m_open).value().size(), 1U);
    }
    EXPECT_TRUE(namesInOpenFolder(m_open).value().empty());
    {
        NewFile file = NewFile::make(m_open, 0600).takeValue();
        EXPECT_EQ(codeOf(file.flush()), 0);
        EXPECT_EQ(codeOf(file.giveName("file", NewFile::Place::MustBeFree)), 0);
        NewFile const other = NewFile::make(m_open, 0600).takeValue();
    }
    EXPECT_EQ(namesInOpenFolder(m_open).value(), std::vector<std::string>{"file"});
}

} // namespace
} // namespace mac::test
