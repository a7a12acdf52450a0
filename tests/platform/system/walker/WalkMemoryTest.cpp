#include "platform/system/walker/WalkMemory.h"
#include "platform/system/FileWriting.h"
#include "platform/system/LongPath.h"
#include "platform/system/walker/FolderLog.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace mac::test {

namespace {

constexpr std::int64_t KeptWalkStart = 2'000'000'000'000'000'001;
constexpr std::int64_t KeptWalkChange = 1'000'000'000'000'000'001;

bool never() { return false; }

RememberedWalk someWalk() {
    std::deque<FolderLog> logs;
    FolderLog& log = logs.emplace_back(0);
    FolderFacts const facts{
        .isFolder = true, .stamp = {.inode = 7, .modified = KeptWalkChange, .changed = KeptWalkChange, .linkCount = 4}};
    FolderLog::Note const top = log.addVolume("/top", {.device = 1, .type = 2, .fileSystem = 3}, facts);
    log.addName(log.addFolder(top, "a", facts), "leaf");
    log.addPackage(top, "A.app");
    return {.question = {.roots = {"/top"}, .packageSuffix = ".app", .names = {"A.app", "B.app"}},
            .start = KeptWalkStart,
            .packages = {"/top/A.app"},
            .folders = std::make_shared<RememberedFolders const>(*indexOf(logs, KeptWalkStart, never))};
}

class KeptWalk : public testing::Test {
protected:
    std::shared_ptr<RememberedWalk const> recallAnew() const {
        return WalkMemory(folder(), [] { return KeptWalkStart; }).recall(someWalk().question);
    }
    void SetUp() override {
        ASSERT_TRUE(WalkMemory(folder(), [] { return KeptWalkStart; }).keep(someWalk()).isDone());
        ASSERT_TRUE(recallAnew());
    }
    std::string folder() const { return m_folder.path("cache/framekeeper"); }
    std::string file() const { return folder() + "/" + WalkMemory::fileName; }
    std::vector<std::byte> bytes() const { return readFileAtPath(file(), 1 << 20).takeValue().bytes; }
    void write(std::span<std::byte const> bytes) const { ASSERT_TRUE(overwriteFileAtPath(file(), bytes).isDone()); }

    TemporaryFolder const m_folder{};
};

} // namespace

TEST_F(KeptWalk, IsReadAsItWasWritten) {
    RememberedWalk const walk = someWalk();
    std::shared_ptr<RememberedWalk const> const read = recallAnew();
    EXPECT_EQ(read->question, walk.question);
    EXPECT_EQ(read->start, walk.start);
    EXPECT_EQ(read->packages, walk.packages);
    EXPECT_TRUE(std::ranges::equal(read->folders->bytes(), walk.folders->bytes()));
}

TEST_F(KeptWalk, IsForThisUserAlone) {
    struct stat status;
    ASSERT_EQ(::stat(folder().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    ASSERT_EQ(::stat(file().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
}

TEST_F(KeptWalk, ServesNoOtherQuestionAndNoEarlierTime) {
    WalkMemory memory(folder(), [] { return KeptWalkStart; });
    WalkQuestion other = someWalk().question;
    other.roots = {"/elsewhere"};
    EXPECT_FALSE(memory.recall(other));
    EXPECT_TRUE(memory.recall(someWalk().question));
    EXPECT_FALSE(WalkMemory(folder(), [] { return KeptWalkStart - 1; }).recall(someWalk().question));
}

TEST_F(KeptWalk, IsNoneWhereverItIsDamaged) {
    std::vector<std::byte> const whole = bytes();
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::vector<std::byte> damaged = whole;
        damaged[i] ^= std::byte{0x40};
        EXPECT_FALSE(walkOfBytes(damaged)) << i;
        EXPECT_FALSE(walkOfBytes({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(i)})) << i;
    }
    std::vector<std::byte> longer = whole;
    longer.push_back({});
    EXPECT_FALSE(walkOfBytes(longer));
    write(std::span(whole).first(whole.size() / 2));
    EXPECT_FALSE(recallAnew());
    write({});
    EXPECT_FALSE(recallAnew());
    write(whole);
    EXPECT_TRUE(recallAnew());
}

TEST_F(KeptWalk, IsNoneIfOthersMayHaveWrittenIt) {
    ASSERT_EQ(::chmod(file().c_str(), 0620), 0);
    EXPECT_FALSE(recallAnew());
    ASSERT_EQ(::chmod(file().c_str(), 0600), 0);
    ASSERT_EQ(::chmod(folder().c_str(), 0777), 0);
    EXPECT_FALSE(recallAnew());
    ASSERT_EQ(::chmod(folder().c_str(), 0700), 0);
    EXPECT_TRUE(recallAnew());
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make files of other users";
    ASSERT_EQ(::lchown(file().c_str(), OrdinaryUser::ID, OrdinaryUser::ID), 0);
    EXPECT_FALSE(recallAnew());
}

TEST_F(KeptWalk, IsNoneBehindALink) {
    ASSERT_EQ(::rename(file().c_str(), m_folder.path("moved").c_str()), 0);
    ASSERT_EQ(::symlink(m_folder.path("moved").c_str(), file().c_str()), 0);
    EXPECT_FALSE(recallAnew());
}

TEST_F(KeptWalk, IsNoneInPlaceOfAPipeOrAFolder) {
    ASSERT_EQ(::unlink(file().c_str()), 0);
    ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
    EXPECT_FALSE(recallAnew()) << "and nobody waits for a writer";
    ASSERT_EQ(::unlink(file().c_str()), 0);
    ASSERT_EQ(::mkdir(file().c_str(), 0700), 0);
    EXPECT_FALSE(recallAnew());
}

TEST_F(KeptWalk, StaysInMemoryIfItCannotBeWritten) {
    ASSERT_EQ(::unlink(file().c_str()), 0);
    ASSERT_EQ(::rmdir(folder().c_str()), 0);
    m_folder.makeFile("cache/framekeeper", "in the way");
    WalkMemory memory(folder(), [] { return KeptWalkStart; });
    EXPECT_FALSE(memory.keep(someWalk()).isDone());
    EXPECT_TRUE(memory.recall(someWalk().question));
    EXPECT_FALSE(recallAnew());
}

TEST_F(KeptWalk, IsNotWrittenAfterAStop) {
    TemporaryFolder const place;
    WalkMemory memory(place.path("framekeeper"), [] { return KeptWalkStart; });
    EXPECT_FALSE(memory.keep(someWalk(), [] { return true; }).isDone());
    EXPECT_TRUE(std::filesystem::is_empty(place.path("framekeeper")));
    EXPECT_TRUE(memory.recall(someWalk().question));
}

// A walk that was given up may be slow to end, and what a walk that began later has left by then is the newer.
TEST_F(KeptWalk, IsNotReplacedByOneThatBeganEarlier) {
    WalkMemory memory(folder(), [] { return KeptWalkStart; });
    ASSERT_TRUE(memory.keep(someWalk()).isDone());
    RememberedWalk earlier = someWalk();
    earlier.start -= 1;
    EXPECT_FALSE(memory.keep(std::move(earlier)).isDone());
    EXPECT_EQ(memory.recall(someWalk().question)->start, KeptWalkStart);
    EXPECT_EQ(recallAnew()->start, KeptWalkStart);
}

TEST_F(KeptWalk, IsNotReplacedByOneThatWasBeingWrittenMeanwhile) {
    WalkMemory memory(folder(), [] { return KeptWalkStart; });
    RememberedWalk earlier = someWalk();
    earlier.start -= 1;
    bool isLaterKept = false;
    auto const keepLater = [&] {
        isLaterKept = isLaterKept || memory.keep(someWalk()).isDone();
        return false;
    };
    EXPECT_FALSE(memory.keep(std::move(earlier), keepLater).isDone());
    ASSERT_TRUE(isLaterKept);
    EXPECT_EQ(memory.recall(someWalk().question)->start, KeptWalkStart);
    EXPECT_EQ(recallAnew()->start, KeptWalkStart);
}

TEST_F(KeptWalk, IsNotWaitedForWhileItsDiskDoesNotAnswer) {
    std::atomic<bool> isReading = false;
    std::atomic<bool> answers = false;
    auto const hangingClock = [&] {
        isReading = true;
        isReading.notify_all();
        answers.wait(false);
        return KeptWalkStart;
    };
    WalkMemory memory(folder(), hangingClock, std::chrono::milliseconds(1));
    std::thread reader([&] { EXPECT_TRUE(memory.recall(someWalk().question)); });
    isReading.wait(false);
    EXPECT_FALSE(memory.recall(someWalk().question));
    Result<void> const kept = memory.keep(someWalk());
    EXPECT_TRUE(!kept.isDone() && kept.problem().is(ETIMEDOUT));
    answers = true;
    answers.notify_all();
    reader.join();
    EXPECT_TRUE(memory.keep(someWalk()).isDone());
}

TEST_F(KeptWalk, IsWrittenByAFewThreadsAtOnceAlone) {
    WalkMemory memory(folder(), [] { return KeptWalkStart; });
    unsigned writers = 0;
    bool isBusy = false;
    std::function<bool()> const keepAnother = [&] {
        if (isBusy) return false;
        ++writers;
        Result<void> const kept = memory.keep(someWalk(), keepAnother);
        isBusy = isBusy || (!kept.isDone() && kept.problem().is(EBUSY));
        return false;
    };
    static_cast<void>(memory.keep(someWalk(), keepAnother));
    EXPECT_TRUE(isBusy);
    EXPECT_EQ(writers, WalkMemory::MostWriters);
    EXPECT_TRUE(memory.keep(someWalk()).isDone()) << "those before have ended";
}

TEST_F(KeptWalk, IsReplacedByOneThatBeganEarlierOnceTheClockIsSetBack) {
    std::int64_t now = KeptWalkStart;
    WalkMemory memory(folder(), [&now] { return now; });
    ASSERT_TRUE(memory.keep(someWalk()).isDone());
    now -= 2;
    RememberedWalk earlier = someWalk();
    earlier.start = now;
    EXPECT_TRUE(memory.keep(std::move(earlier)).isDone());
    EXPECT_EQ(memory.recall(someWalk().question)->start, now);
    EXPECT_EQ(recallAnew()->start, now);
}

TEST_F(KeptWalk, MakesNoHomeThatIsMissing) {
    TemporaryFolder const place;
    WalkMemory memory(place.path("no home/.cache/framekeeper"), [] { return KeptWalkStart; });
    EXPECT_FALSE(memory.keep(someWalk()).isDone());
    EXPECT_FALSE(std::filesystem::exists(place.path("no home")));
    EXPECT_TRUE(memory.recall(someWalk().question));
    std::filesystem::create_directory(place.path("no home"));
    EXPECT_TRUE(memory.keep(someWalk()).isDone());
}

TEST_F(KeptWalk, ComesBackAfterItsFolderWasRemoved) {
    ASSERT_EQ(::unlink(file().c_str()), 0);
    ASSERT_EQ(::rmdir(folder().c_str()), 0);
    EXPECT_FALSE(recallAnew());
    ASSERT_TRUE(WalkMemory(folder(), [] { return KeptWalkStart; }).keep(someWalk()).isDone());
    EXPECT_TRUE(recallAnew());
}

// The file of a process that is killed in the middle of writing has no name that is read, and goes with the next one.
TEST_F(KeptWalk, IsTheOldOneIfItsWriterIsKilled) {
    RememberedWalk later = someWalk();
    later.packages = {"/top/B.app"};
    pid_t const writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        // Asked between the making of the new file and its bytes.
        WalkMemory memory(folder(), [] { return KeptWalkStart; });
        static_cast<void>(memory.keep(later, [] { return std::raise(SIGKILL) == 0; }));
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(writer, &status, 0), writer);
    ASSERT_TRUE(WIFSIGNALED(status));
    std::shared_ptr<RememberedWalk const> const read = recallAnew();
    ASSERT_TRUE(read);
    EXPECT_EQ(read->packages, someWalk().packages);
    auto const countFiles = [this] {
        return std::distance(std::filesystem::directory_iterator(folder()), std::filesystem::directory_iterator());
    };
    EXPECT_EQ(countFiles(), 2) << "the new file is there, under a temporary name";
    ASSERT_TRUE(WalkMemory(folder(), [] { return KeptWalkStart; }).keep(later).isDone());
    EXPECT_EQ(countFiles(), 1);
    EXPECT_EQ(recallAnew()->packages, later.packages);
}

} // namespace mac::test
