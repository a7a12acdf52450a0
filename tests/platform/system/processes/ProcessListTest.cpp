#include "platform/system/processes/ProcessList.h"
#include "platform/foundation/running/Log.h"
#include "platform/processes/SerialNumbers.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TestRun.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <grp.h>
#include <limits>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {
namespace {

// Tests of the list of processes, in a process namespace of their own.
class ProcessList : public OwnProcesses {
protected:
    static ProcessSerialNumber numberOf(ChildProcess const& child) {
        ProcessSerialNumber psn;
        EXPECT_EQ(GetProcessForPID(child.pid(), &psn), noErr);
        return psn;
    }

    // Makes the system give the next process this ID; false if it does not let us choose.
    static bool chooseNextID(std::int32_t pid) {
        std::ofstream last("/proc/sys/kernel/ns_last_pid");
        last << pid - 1 << std::flush;
        return last.good();
    }

    // A process that does nothing, started with this ID within a fraction of a clock tick; it ends with the object.
    class Sleeper {
    public:
        explicit Sleeper(std::int32_t pid) {
            if (!chooseNextID(pid)) return;
            m_pid = ::fork();
            if (m_pid == 0) {
                for (;;)
                    ::pause();
            }
        }
        ~Sleeper() {
            if (m_pid <= 0) return;
            ::kill(m_pid, SIGKILL);
            ::waitpid(m_pid, nullptr, 0);
        }
        Sleeper(Sleeper const&) = delete;
        Sleeper& operator=(Sleeper const&) = delete;

        // Another ID than the one wanted, or -1, where the system does not let us choose it.
        std::int32_t pid() const { return m_pid; }

    private:
        std::int32_t m_pid{-1};
    };

    // Starts a process that gets this ID; null where the system does not let us choose it.
    static std::unique_ptr<ChildProcess> startWithID(std::int32_t pid) {
        if (!chooseNextID(pid)) return nullptr;
        auto child = std::make_unique<ChildProcess>(std::vector<std::string>{"/bin/cat"});
        return child->pid() == pid ? std::move(child) : nullptr;
    }

    static std::set<std::int32_t> walk() {
        std::set<std::int32_t> ids;
        ProcessSerialNumber psn{0, kNoProcess};
        std::int32_t pid = 0;
        while (GetNextProcess(&psn) == noErr) {
            if (GetProcessPID(&psn, &pid) == noErr) ids.insert(pid);
        }
        return ids;
    }
};

TEST_F(ProcessList, NeverSignalsTheNextProcessWithAnID) {
    auto first = std::make_unique<ChildProcess>(std::vector<std::string>{"/bin/cat"});
    ProcessSerialNumber const old = numberOf(*first);
    ProcessIdentity const identity = identityOf(old).value();
    std::int32_t const pid = first->pid();
    first.reset();
    std::unique_ptr<ChildProcess> const second = startWithID(pid);
    if (!second) GTEST_SKIP() << "a process cannot be given an ID here: " << std::strerror(errno);

    std::int32_t found = 0;
    EXPECT_EQ(GetProcessPID(&old, &found), procNotFound);
    EXPECT_TRUE(ProcessInformationCopyDictionary(&old, kProcessDictionaryIncludeAllInformationMask) == nil);
    EXPECT_FALSE(askToEnd(identity));
    ProcessSerialNumber const current = numberOf(*second);
    EXPECT_NE(current, old);
    EXPECT_EQ(GetProcessPID(&current, &found), noErr) << "the second was not asked to end";
    EXPECT_TRUE(askToEnd(identityOf(current).value()));
    EXPECT_EQ(second->wait(), -SIGTERM);
}

TEST_F(ProcessList, GivesNoNumberTwiceThoughAnIDReturnsAtOnce) {
    constexpr std::int32_t recycled = 25'000;
    constexpr int rounds = 12;
    std::vector<ProcessSerialNumber> numbers;
    for (int round = 0; round < rounds; ++round) {
        Sleeper const sleeper(recycled);
        if (sleeper.pid() != recycled) GTEST_SKIP() << "a process cannot be given an ID here: " << std::strerror(errno);
        ProcessSerialNumber psn{0, kNoProcess};
        if (round % 2 == 0) {
            ASSERT_EQ(GetProcessForPID(recycled, &psn), noErr);
        } else {
            std::int32_t pid = 0;
            while (pid != recycled && GetNextProcess(&psn) == noErr)
                GetProcessPID(&psn, &pid);
            ASSERT_EQ(pid, recycled);
        }
        EXPECT_EQ(std::ranges::find(numbers, psn), numbers.end()) << "in round " << round;
        for (ProcessSerialNumber const& old : numbers) {
            std::int32_t pid = 0;
            EXPECT_EQ(GetProcessPID(&old, &pid), procNotFound) << "in round " << round;
        }
        numbers.push_back(psn);
    }
    EXPECT_EQ(numbers.size(), std::size_t{rounds});
}

TEST_F(ProcessList, KnowsAProcessAgainButNotTheNextWithItsID) {
    constexpr std::int32_t recycled = 25'000;
    KnownProcesses known;
    std::optional<ProcessIdentity> first;
    for (bool const isFirst : {true, false}) {
        Sleeper const sleeper(recycled);
        if (sleeper.pid() != recycled) GTEST_SKIP() << "a process cannot be given an ID here: " << std::strerror(errno);
        EXPECT_TRUE(isFirst || !known.read(*first));
        EXPECT_TRUE(isFirst || !known.isThere(*first)) << "another process has its ID";
        std::vector<ProcessIdentity> const list = known.list();
        EXPECT_EQ(known.list(), list);
        auto const found = std::ranges::find(list, recycled, &ProcessIdentity::pid);
        ASSERT_NE(found, list.end());
        std::optional<RunningProcess> const process = known.read(*found);
        ASSERT_TRUE(process);
        EXPECT_EQ(process->identity, *found);
        EXPECT_EQ(process->executable, runningProcess(::getpid()).value().executable);
        EXPECT_TRUE(known.isThere(*found));
        if (isFirst) first = *found;
    }
    EXPECT_FALSE(known.read(*first));
    EXPECT_FALSE(known.isThere(*first));
}

TEST_F(ProcessList, IsInTheOrderOfTheirStartWhateverTheirIDs) {
    constexpr std::int32_t high = 30'000;
    std::unique_ptr<ChildProcess> const first = startWithID(high);
    if (!first) GTEST_SKIP() << "a process cannot be given an ID here: " << std::strerror(errno);
    // A number is given once the clock tick of the start has passed, so that the second starts in a later one.
    numberOf(*first);
    constexpr std::int32_t low = 20'000;
    std::unique_ptr<ChildProcess> const second = startWithID(low);
    ASSERT_TRUE(second);
    std::vector<std::int32_t> ids;
    ProcessSerialNumber psn{0, kNoProcess};
    std::int32_t pid = 0;
    while (GetNextProcess(&psn) == noErr) {
        if (GetProcessPID(&psn, &pid) == noErr && (pid == high || pid == low)) ids.push_back(pid);
    }
    EXPECT_EQ(ids, (std::vector{high, low}));
}

// The number in the file; the highest where there is none, or no limit.
std::uint64_t limitIn(std::string const& file) {
    std::uint64_t limit = 0;
    return std::ifstream(file) >> limit ? limit : std::numeric_limits<std::uint64_t>::max();
}

// How many processes there may be, as far as it is known: of the computer, of the container and of the user.
std::uint64_t mostProcesses() {
    rlimit user{};
    ::getrlimit(RLIMIT_NPROC, &user);
    return std::min({limitIn("/proc/sys/kernel/pid_max"), limitIn("/sys/fs/cgroup/pids.max"),
                     limitIn("/sys/fs/cgroup/pids/pids.max"), std::uint64_t{user.rlim_cur}});
}

// Ten thousand, or what may run here while other programs must be able to start.
TEST_F(ProcessList, HasVeryManyProcesses) {
    constexpr std::uint64_t most = 10'000;
    constexpr std::uint64_t fewest = 500;
    std::uint64_t const wanted = std::min(most, mostProcesses() / 3);
    if (wanted < fewest) GTEST_SKIP() << "no more than " << mostProcesses() << " processes may run here";
    ChildProcess many({MANY_PROCESSES, std::to_string(wanted)});
    std::size_t const made = std::stoul(many.readLine());
    if (made < fewest) GTEST_SKIP() << "no more than " << made << " processes are allowed here";
    std::set<std::int32_t> const ids = walk();
    EXPECT_GE(ids.size(), made + 1);
    EXPECT_TRUE(ids.contains(many.pid()));
    EXPECT_TRUE(ids.contains(::getpid()));

    // All of them go while they are walked through.
    ProcessSerialNumber psn{0, kNoProcess};
    constexpr int stepsBefore = 100;
    for (int step = 0; step < stepsBefore; ++step)
        ASSERT_EQ(GetNextProcess(&psn), noErr);
    many.writeLine("end");
    EXPECT_EQ(many.wait(), 0);
    int steps = 0;
    while (GetNextProcess(&psn) == noErr)
        ++steps;
    EXPECT_LT(steps, stepsBefore);
}

TEST_F(ProcessList, PassesSilentlyOverProcessesThatMayNotBeLookedAt) {
    ChildProcess const others({"/bin/cat"});
    pid_t const stranger = ::fork();
    ASSERT_GE(stranger, 0);
    if (stranger == 0) {
        constexpr uid_t nobody = 65534;
        if (::setgroups(0, nullptr) != 0 || ::setuid(nobody) != 0) ::_exit(2);
        bool hasLogged = false;
        LogListener const listener([&](NSString const&) { hasLogged = true; });
        ::_exit(walk() == std::set<std::int32_t>{::getpid()} && !hasLogged ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(stranger, &status, 0), stranger);
    if (WEXITSTATUS(status) == 2) GTEST_SKIP() << "nobody else can be played here";
    EXPECT_EQ(status, 0);
}

} // namespace
} // namespace mac::test
