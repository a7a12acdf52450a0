#include "platform/system/processes/ProcessList.h"
#include "platform/foundation/Log.h"
#include "platform/processes/SerialNumbers.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OwnProcesses.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fstream>
#include <grp.h>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {
namespace {

// The list of processes where nobody else's are on it.
class ProcessList : public OwnProcesses {
protected:
    static ProcessSerialNumber numberOf(ChildProcess const& child) {
        ProcessSerialNumber psn;
        EXPECT_EQ(GetProcessForPID(child.pid(), &psn), noErr);
        return psn;
    }

    // In clock ticks since the system's start.
    static std::uint64_t now() {
        timespec time{};
        ::clock_gettime(CLOCK_BOOTTIME, &time);
        constexpr std::uint64_t nanosecondsOfASecond = 1'000'000'000;
        auto const ticks = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
        return static_cast<std::uint64_t>(time.tv_sec) * ticks +
               static_cast<std::uint64_t>(time.tv_nsec) * ticks / nanosecondsOfASecond;
    }

    // Starts a process that gets this ID; null where the system does not let us choose it.
    static std::unique_ptr<ChildProcess> startWithID(std::int32_t pid) {
        std::ofstream last("/proc/sys/kernel/ns_last_pid");
        last << pid - 1 << std::flush;
        if (!last) return nullptr;
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
    // The start is known to the tick.
    while (now() <= identity.startTime) {}
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

TEST_F(ProcessList, IsInTheOrderOfTheirStartWhateverTheirIDs) {
    constexpr std::int32_t high = 30'000;
    std::unique_ptr<ChildProcess> const first = startWithID(high);
    if (!first) GTEST_SKIP() << "a process cannot be given an ID here: " << std::strerror(errno);
    std::uint64_t const start = identityOf(numberOf(*first)).value().startTime;
    // The start is known to the tick.
    while (now() <= start) {}
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

TEST_F(ProcessList, HasTenThousandProcesses) {
    constexpr int wanted = 10'000;
    ChildProcess many({MANY_PROCESSES, std::to_string(wanted)});
    std::string const made = many.readLine();
    if (made != std::to_string(wanted)) GTEST_SKIP() << "no more than " << made << " processes are allowed here";
    std::set<std::int32_t> const ids = walk();
    EXPECT_GE(ids.size(), std::size_t{wanted} + 1);
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
