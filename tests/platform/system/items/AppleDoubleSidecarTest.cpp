#include "platform/system/items/AppleDoubleSidecar.h"
#include "tests/platform/files/Attributes.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Failures.h"
#include "tests/support/TemporaryFolder.h"
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {

namespace {

using State = AppleDoubleSidecar::State;
using Names = std::vector<std::string>;

// Writes the file of that name with these attributes.
void makeBeside(TemporaryFolder const& folder, std::string const& name, Names const& attributes) {
    mac::AppleDouble beside;
    for (std::string const& attribute : attributes)
        ASSERT_TRUE(beside.setValue(attribute, std::as_bytes(std::span("beside", 6))));
    std::vector<std::byte> const bytes = beside.written().value();
    folder.makeFile(name, {reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

class Sidecar : public testing::Test {
protected:
    OpenItem open(std::string const& path) const {
        Result<OpenItem> item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
        EXPECT_TRUE(item.hasValue()) << path;
        return item.takeValue();
    }

    TemporaryFolder const m_folder{};
    std::string const m_file{m_folder.makeFile("file", "x")};
    OpenItem const m_item{open(m_file)};
};

TEST_F(Sidecar, IsAbsentThenRead) {
    AppleDoubleSidecar sidecar(m_item);
    EXPECT_EQ(sidecar.state(), State::Absent);
    EXPECT_TRUE(sidecar.isWritable());
    std::array const value{std::byte{1}};
    ASSERT_TRUE(sidecar.contents.setValue("colour", value));
    ASSERT_TRUE(sidecar.save().isDone());
    AppleDoubleSidecar const read(m_item);
    EXPECT_EQ(read.state(), State::Read);
    EXPECT_EQ(read.contents, sidecar.contents);
    EXPECT_TRUE(valueInSidecar(m_item, "colour").hasValue());
    Result<std::vector<std::byte>> const other = valueInSidecar(m_item, "shape");
    ASSERT_FALSE(other.hasValue());
    EXPECT_EQ(other.problem().code, ENODATA);
    EXPECT_EQ(other.problem().item, "shape");
}

TEST_F(Sidecar, IsForeignWhereTheNameBelongsToAnotherFile) {
    m_folder.makeFile("._file", "a text");
    m_folder.makeFile("other", "x");
    m_folder.makeFolder("._other");
    for (char const* const name : {"file", "other"}) {
        OpenItem const item = open(m_folder.path(name));
        AppleDoubleSidecar const sidecar(item);
        EXPECT_EQ(sidecar.state(), State::Foreign) << name;
        EXPECT_FALSE(sidecar.isWritable()) << name;
        EXPECT_TRUE(sidecar.reading().isDone()) << "it holds no attribute of the item";
        Result<void> const saved = sidecar.save();
        ASSERT_FALSE(saved.isDone());
        EXPECT_EQ(saved.problem().code, EEXIST) << name;
    }
    EXPECT_EQ(textOf(m_folder.path("._file")), "a text");
}

TEST_F(Sidecar, IsImpossibleBesideTheRootAndALongName) {
    OpenItem const root = open("/");
    EXPECT_EQ(AppleDoubleSidecar(root).state(), State::Impossible);
    OpenItem const item = open(m_folder.makeFile(std::string(254, 'x'), "x"));
    AppleDoubleSidecar const sidecar(item);
    EXPECT_EQ(sidecar.state(), State::Impossible);
    EXPECT_TRUE(sidecar.reading().isDone());
}

TEST_F(Sidecar, TellsWhyItIsUnreadable) {
    m_folder.makeFile("._file", "x");
    withRefusedCall(SYS_read, EIO, [&] {
        AppleDoubleSidecar const sidecar(m_item);
        EXPECT_EQ(sidecar.state(), State::Unreadable);
        EXPECT_FALSE(sidecar.isWritable());
        Result<void> const reading = sidecar.reading();
        ASSERT_FALSE(reading.isDone());
        EXPECT_EQ(reading.problem().code, EIO);
        EXPECT_FALSE(sidecar.save().isDone());
        EXPECT_EQ(valueInSidecar(m_item, "colour").problem().code, EIO);
    });
}

TEST_F(Sidecar, IsNotWrittenOverAnothersChange) {
    makeBeside(m_folder, "._file", {"a"});
    AppleDoubleSidecar ours(m_item);
    ASSERT_TRUE(ours.contents.setValue("b", {}));
    makeBeside(m_folder, "theirs", {"a", "c"});
    ASSERT_EQ(::rename(m_folder.path("theirs").c_str(), m_folder.path("._file").c_str()), 0);
    EXPECT_EQ(codeOf(ours.save()), EAGAIN);
    EXPECT_EQ(list(m_file), (Names{"a", "c"}));
    EXPECT_TRUE(AppleDoubleSidecar(m_item).save().isDone());
}

TEST_F(Sidecar, IsNotWrittenOverOneThatHasAppeared) {
    AppleDoubleSidecar ours(m_item);
    ASSERT_TRUE(ours.contents.setValue("b", {}));
    makeBeside(m_folder, "._file", {"a"});
    EXPECT_EQ(codeOf(ours.save()), EAGAIN);
    EXPECT_EQ(list(m_file), Names{"a"});
}

TEST_F(Sidecar, IsNotRemovedWhenItHasChanged) {
    makeBeside(m_folder, "._file", {"a"});
    AppleDoubleSidecar ours(m_item);
    ASSERT_TRUE(ours.contents.removeValue("a"));
    makeBeside(m_folder, "._file", {"a", "c"});
    EXPECT_EQ(codeOf(ours.save()), EAGAIN);
    EXPECT_EQ(list(m_file), (Names{"a", "c"}));
    ASSERT_EQ(::unlink(m_folder.path("._file").c_str()), 0);
    EXPECT_TRUE(ours.save().isDone());
}

TEST_F(Sidecar, IsNotWrittenForAnItemThatHasLostItsName) {
    AppleDoubleSidecar ours(m_item);
    ASSERT_TRUE(ours.contents.setValue("b", {}));
    ASSERT_EQ(::rename(m_file.c_str(), m_folder.path("moved").c_str()), 0);
    EXPECT_EQ(codeOf(ours.save()), ESTALE);
    m_folder.makeFile("file", "another");
    EXPECT_EQ(codeOf(ours.save()), ESTALE);
    EXPECT_FALSE(isThere(m_folder.path("._file")));
}

TEST_F(Sidecar, IsOneProgramsAtATime) {
    Result<AppleDoubleLock> const lock = AppleDoubleLock::take(m_item);
    ASSERT_TRUE(lock.hasValue());
    FileDescriptor const folder(::open(m_folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    EXPECT_EQ(::flock(folder.number(), LOCK_EX | LOCK_NB), -1);
    EXPECT_EQ(errno, EWOULDBLOCK);
}

TEST_F(Sidecar, IsLockedForThreadsWhereFoldersCannotBe) {
    withRefusedCall(SYS_flock, EOPNOTSUPP, [&] {
        Result<AppleDoubleLock> const lock = AppleDoubleLock::take(m_item);
        EXPECT_TRUE(lock.hasValue());
    });
}

TEST_F(Sidecar, KeepsWhatSeveralProgramsWrite) {
    constexpr int programs = 4;
    constexpr int attributes = 12;
    std::vector<pid_t> children;
    for (int program = 0; program < programs; ++program) {
        pid_t const child = ::fork();
        if (child == 0) {
            int failures = 0;
            for (int index = 0; index < attributes; ++index) {
                // Too long a name for the item itself.
                std::string const name = std::to_string(program) + " " + std::to_string(index) + std::string(248, 'n');
                failures += set(m_file, name, "value") == 0 ? 0 : 1;
            }
            ::_exit(failures);
        }
        ASSERT_GT(child, 0);
        children.push_back(child);
    }
    for (pid_t const child : children) {
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(list(m_file).size(), static_cast<std::size_t>(programs * attributes));
}

} // namespace

} // namespace mac::test
