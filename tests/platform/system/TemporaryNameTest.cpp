#include "platform/system/TemporaryName.h"
#include "tests/support/Failures.h"
#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {

namespace {

using enum VolumeSharing;

// A process that has ended and was waited for.
TemporaryOwner endedProcess() {
    TemporaryOwner owner = TemporaryOwner::current();
    owner.pid = ::fork();
    if (owner.pid == 0) ::_exit(0);
    ::waitpid(owner.pid, nullptr, 0);
    return owner;
}

// A child that runs until the object goes.
class RunningChild {
public:
    RunningChild() : m_pid(::fork()) {
        if (m_pid != 0) return;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (;;)
            ::pause();
    }
    ~RunningChild() {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
    RunningChild(RunningChild const&) = delete;
    RunningChild& operator=(RunningChild const&) = delete;

    pid_t pid() const { return m_pid; }

private:
    pid_t m_pid;
};

TEST(TemporaryName, TellsWhoMadeIt) {
    std::string const name = temporaryName().value();
    std::optional<ParsedTemporaryName> const parsed = parseTemporaryName(name);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->owner, TemporaryOwner::current());
    EXPECT_EQ(parsed->owner.pid, ::getpid());
    EXPECT_FALSE(parsed->mark);
    EXPECT_LE(name.size(), 140U);
    EXPECT_NE(temporaryName().value(), name);
    ASSERT_TRUE(parseTemporaryName("._" + name));
    EXPECT_EQ(parseTemporaryName("._" + name)->owner, parsed->owner);
    EXPECT_EQ(parseTemporaryName(asideName(0xFEDC'BA98'0000'0001U).value())->mark, 0xFEDC'BA98'0000'0001U);
}

TEST(TemporaryName, TellsWhichItemsGo) {
    constexpr std::uint64_t one = 0xFEDC'BA98'0000'0001U;
    constexpr std::uint64_t other = 0x1234'5678'9ABC'DEF0U;
    std::string const aside = asideName(one).value();
    EXPECT_TRUE(parseTemporaryName(aside)->accepts(one));
    EXPECT_FALSE(parseTemporaryName(aside)->accepts(other));
    EXPECT_FALSE(parseTemporaryName(asideName(MarkOfNoItem).value())->accepts(one));
    EXPECT_TRUE(parseTemporaryName(temporaryName().value())->accepts(one));
    std::string const either = asideNameForEither(one, other).value();
    EXPECT_LE(either.size(), 140U);
    ASSERT_TRUE(parseTemporaryName(either));
    EXPECT_TRUE(parseTemporaryName(either)->accepts(one));
    EXPECT_TRUE(parseTemporaryName(either)->accepts(other));
    EXPECT_FALSE(parseTemporaryName(either)->accepts(one + other));
    EXPECT_FALSE(parseTemporaryName(either + "0"));
    EXPECT_FALSE(parseTemporaryName(either.substr(0, either.size() - 1)));
    EXPECT_FALSE(parseTemporaryName(aside + "+"));
    EXPECT_FALSE(parseTemporaryName(temporaryName().value() + "-+"));
}

TEST(TemporaryName, IsToldFromOtherNames) {
    std::string const name = temporaryName().value();
    std::string const aside = asideName(1).value();
    for (std::string const& other :
         {std::string(), std::string("._"), std::string("file"), std::string(".framekeeper-"),
          name.substr(0, name.size() - 1), name + "0", name + "-", name + "-1", aside + "0", "x" + name,
          std::string(".framekeeper-ab-zz-1-1-1-1-") + std::string(32, '0'),
          std::string(".framekeeper-zz-ab-1-1-1-1-") + std::string(32, '0'),
          std::string(".framekeeper-ab-ab-1-1--1-") + std::string(32, '0'),
          std::string(".framekeeper-ab-ab-1-1-1-99999999999999999999-") + std::string(32, '0')})
        EXPECT_FALSE(parseTemporaryName(other)) << other;
}

TEST(TemporaryName, NeedsRandomNumbers) {
    withRefusedCall(SYS_getrandom, EIO, [] {
        EXPECT_EQ(codeOf(temporaryName()), EIO);
        EXPECT_EQ(codeOf(asideName(1)), EIO);
    });
}

TEST(TemporaryName, TellsWhetherItsProcessRuns) {
    TemporaryOwner const own = TemporaryOwner::current();
    ASSERT_FALSE(own.boot.empty());
    EXPECT_EQ(stateOf(own, ThisComputerOnly), OwnerState::Runs);
    TemporaryOwner earlier = own;
    --earlier.startTime;
    EXPECT_EQ(stateOf(earlier, ThisComputerOnly), OwnerState::HasEnded) << "its ID has another process now";
    EXPECT_EQ(stateOf(endedProcess(), ThisComputerOnly), OwnerState::HasEnded);
    EXPECT_EQ(stateOf(endedProcess(), PerhapsOthers), OwnerState::HasEnded);
}

TEST(TemporaryName, DoesNotTakeAProcessForEndedThatItCannotSee) {
    TemporaryOwner const own = TemporaryOwner::current();
    TemporaryOwner elsewhere = own;
    elsewhere.boot = std::string(16, 'a');
    EXPECT_EQ(stateOf(elsewhere, PerhapsOthers), OwnerState::Unknown);
    EXPECT_EQ(stateOf(elsewhere, ThisComputerOnly), own.machine.empty() ? OwnerState::Unknown : OwnerState::HasEnded)
        << "the system was started anew";
    for (std::string const& machine : {std::string(), std::string(16, 'b')}) {
        elsewhere.machine = machine;
        EXPECT_EQ(stateOf(elsewhere, ThisComputerOnly), OwnerState::Unknown) << "a server may hand out the disk";
    }
    TemporaryOwner inContainer = endedProcess();
    ++inContainer.pidNamespace;
    EXPECT_EQ(stateOf(inContainer, ThisComputerOnly), OwnerState::Unknown);
    TemporaryOwner incomplete = endedProcess();
    incomplete.startTime = 0;
    EXPECT_EQ(stateOf(incomplete, ThisComputerOnly), OwnerState::Unknown);
}

TEST(TemporaryName, DoesNotBelieveAListOfProcessesThatIsNotItsOwn) {
    RunningChild const child;
    ASSERT_GT(child.pid(), 0);
    // The child cannot have started before this process; both may have started within one tick of the clock.
    TemporaryOwner other = TemporaryOwner::current();
    other.pid = child.pid();
    --other.startTime;
    EXPECT_EQ(stateOf(other, ThisComputerOnly), OwnerState::HasEnded) << "it started at another time";
    TemporaryOwner onAnotherClock = other;
    ++onAnotherClock.timeNamespace;
    EXPECT_EQ(stateOf(onAnotherClock, ThisComputerOnly), OwnerState::Unknown);
    withRefusedCall(SYS_readlink, ENOENT, [&] {
        EXPECT_EQ(stateOf(other, ThisComputerOnly), OwnerState::Unknown);
        EXPECT_EQ(stateOf(endedProcess(), ThisComputerOnly), OwnerState::HasEnded) << "the system itself says so";
    });
}

TEST(TemporaryName, IsItsOwnInAProcessThatWasForked) {
    static_cast<void>(TemporaryOwner::current());
    int const child = ::fork();
    if (child == 0) ::_exit(TemporaryOwner::current().pid == ::getpid() ? 0 : 1);
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

} // namespace

} // namespace mac::test
