#include "platform/system/LogFile.h"
#include "platform/system/LongPath.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/Failures.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace mac::test {

namespace {

// A clock that only counts, and does something in the pauses.
struct PausingClock {
    std::vector<std::chrono::milliseconds> pauses{};
    std::function<void()> inPause{};

    std::function<void(std::chrono::milliseconds)> pause() {
        return [this](std::chrono::milliseconds duration) {
            pauses.push_back(duration);
            if (inPause) inPause();
        };
    }
};

class LogFile : public PrivateMounts {
protected:
    // Nothing is mounted unless a test asks for it.
    void SetUp() override {}

    // The error number; 0 for success.
    int append(std::string const& path, std::string const& bytes, OldLogLines oldLines = OldLogLines::AreKept) {
        Result<OwnedStream> stream = openLogFile(path, oldLines, m_clock.pause());
        if (!stream.hasValue()) return stream.problem().code;
        Result<void> const written = appendAndClose(stream.takeValue(), bytes);
        return written.isDone() ? 0 : written.problem().code;
    }
    static std::string contentsOfLog(std::string const& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    TemporaryFolder const m_folder{};
    std::string const m_path{m_folder.path("a.log")};
    PausingClock m_clock{};
};

} // namespace

TEST_F(LogFile, IsCreatedAppendedToAndEmptied) {
    EXPECT_EQ(append(m_path, "one\n"), 0);
    EXPECT_EQ(append(m_path, "two\n"), 0);
    EXPECT_EQ(contentsOfLog(m_path), "one\ntwo\n");
    EXPECT_EQ(append(m_path, "", OldLogLines::AreDropped), 0);
    EXPECT_EQ(contentsOfLog(m_path), "");
    EXPECT_TRUE(m_clock.pauses.empty());
}

TEST_F(LogFile, IsAppendedToAlsoByAStreamThatEmptiedIt) {
    Result<OwnedStream> stream = openLogFile(m_path, OldLogLines::AreDropped, m_clock.pause());
    ASSERT_TRUE(stream.hasValue());
    EXPECT_EQ(append(m_path, "other\n"), 0);
    EXPECT_TRUE(appendAndClose(stream.takeValue(), "own\n").isDone());
    EXPECT_EQ(contentsOfLog(m_path), "other\nown\n");
}

TEST_F(LogFile, TakesLargeMessagesWithOneWrite) {
    auto const callsFor = [&](std::size_t size) {
        return systemCallsOf([&] { append(m_path, std::string(size, 'x')); });
    };
    std::optional<unsigned> const small = callsFor(10);
    if (!small) GTEST_SKIP() << "tracing is not allowed here";
    // A large buffer costs two calls for its memory and gives it back.
    std::optional<unsigned> const large = callsFor(1 << 20);
    std::optional<unsigned> const larger = callsFor((1 << 20) + 1);
    EXPECT_LE(*large, *small + 4);
    EXPECT_EQ(*larger, *large);
}

TEST_F(LogFile, KeepsTheLinesOfSeveralProcessesWhole) {
    constexpr int processes = 4;
    constexpr int lines = 100;
    std::vector<pid_t> children;
    for (int process = 0; process < processes; ++process) {
        pid_t const child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            std::string const line(10000, static_cast<char>('a' + process));
            int failures = 0;
            for (int index = 0; index < lines; ++index)
                failures += append(m_path, line + "\n");
            ::_exit(failures == 0 ? 0 : 1);
        }
        children.push_back(child);
    }
    for (pid_t const child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    std::ifstream stream(m_path);
    int count = 0;
    for (std::string line; std::getline(stream, line); ++count)
        ASSERT_TRUE(line.size() == 10000 && line.find_first_not_of(line.front()) == std::string::npos) << count;
    EXPECT_EQ(count, processes * lines);
}

TEST_F(LogFile, IsFollowedThroughALinkAlsoToAMissingFile) {
    std::string const target = m_folder.path("target");
    ASSERT_EQ(::symlink(target.c_str(), m_path.c_str()), 0);
    EXPECT_EQ(append(m_path, "one"), 0);
    EXPECT_EQ(append(m_path, "two"), 0);
    EXPECT_EQ(contentsOfLog(target), "onetwo");
}

TEST_F(LogFile, MayHaveAPathOfAnyLength) {
    LongFolder folder;
    folder.makeFile("a.log", "");
    EXPECT_EQ(append(folder.path() + "/a.log", "one"), 0);
    Result<FileContents> const contents = readFileAtPath(folder.path() + "/a.log", 10);
    ASSERT_TRUE(contents.hasValue());
    EXPECT_EQ(contents.value().bytes.size(), 3U);
}

TEST_F(LogFile, IsTriedTenTimesASecondApart) {
    ASSERT_EQ(::mkdir(m_path.c_str(), 0700), 0);
    EXPECT_EQ(append(m_path, "one"), EISDIR);
    EXPECT_EQ(m_clock.pauses, std::vector(9, std::chrono::milliseconds(1000)));
}

TEST_F(LogFile, IsOpenedOnceItsFolderIsThere) {
    m_clock.inPause = [&] {
        if (m_clock.pauses.size() == 9) m_folder.makeFolder("late");
    };
    EXPECT_EQ(append(m_folder.path("late/a.log"), "one"), 0);
    EXPECT_EQ(contentsOfLog(m_folder.path("late/a.log")), "one");
    EXPECT_EQ(m_clock.pauses.size(), 9U);
}

TEST_F(LogFile, IsNotWaitedForInAPipe) {
    ASSERT_EQ(::mkfifo(m_path.c_str(), 0600), 0);
    EXPECT_EQ(append(m_path, "one"), ENXIO);
    int const reader = ::open(m_path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(append(m_path, "one"), 0);
    // More than a pipe holds.
    EXPECT_EQ(append(m_path, std::string(1 << 20, 'x')), EAGAIN);
    char start[4]{};
    EXPECT_EQ(::read(reader, start, 3), 3);
    EXPECT_STREQ(start, "one");
    ::close(reader);
}

TEST_F(LogFile, IsNotWaitedForInADevice) {
    EXPECT_EQ(append("/dev/null", "one"), 0);
    EXPECT_EQ(append("/dev/full", "one"), ENOSPC);
    EXPECT_TRUE(m_clock.pauses.empty());
}

TEST_F(LogFile, OnAFullDiskSaysSoAndKeepsTheOldLines) {
    PrivateMounts::SetUp();
    if (IsSkipped()) return;
    TemporaryFolder const point;
    mountMemory(point.path(), "size=16k");
    std::string const path = point.path("a.log");
    EXPECT_EQ(append(path, "first line\n"), 0);
    EXPECT_EQ(append(path, std::string(100000, 'x')), ENOSPC);
    EXPECT_TRUE(contentsOfLog(path).starts_with("first line\n"));
    TearDown();
}

} // namespace mac::test
