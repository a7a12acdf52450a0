#include "platform/system/StandardStreams.h"
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::test {
namespace {

// Whether the function, in a process of its own, answers true.
bool holdsInAChild(std::function<bool()> const& function) {
    pid_t const child = ::fork();
    if (child == 0) ::_exit(function() ? 0 : 1);
    int status = -1;
    ::waitpid(child, &status, 0);
    return status == 0;
}

bool failsWith(int code, Result<void> const& written) { return !written.isDone() && written.problem().is(code); }

TEST(StandardStreams, ReportAClosedPipe) {
    EXPECT_TRUE(holdsInAChild([] {
        prepareStandardStreams();
        int ends[2];
        if (::pipe(ends) != 0) return false;
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[0]);
        ::close(ends[1]);
        return failsWith(EPIPE, writeTo(StandardStream::Output, "text"));
    }));
}

TEST(StandardStreams, ReportAFullDisk) {
    EXPECT_TRUE(holdsInAChild([] {
        ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO);
        return failsWith(ENOSPC, writeTo(StandardStream::Output, "text")) && !isTerminal(StandardStream::Output);
    }));
}

TEST(StandardStreams, DoNotTurnIntoTheNextFileThatIsOpened) {
    EXPECT_TRUE(holdsInAChild([] {
        ::close(STDOUT_FILENO);
        ::close(STDERR_FILENO);
        prepareStandardStreams();
        bool const isApart = ::open("/dev/null", O_RDWR) > STDERR_FILENO;
        return isApart && failsWith(EBADF, writeTo(StandardStream::Output, "text"));
    }));
}

TEST(StandardStreams, WriteAllOfIt) {
    EXPECT_TRUE(holdsInAChild([] {
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        return writeTo(StandardStream::Output, std::string(100000, 'x')).isDone() &&
               writeTo(StandardStream::Output, "").isDone();
    }));
}

TEST(Interruptions, AreHeldOnceThatIsAskedFor) {
    EXPECT_TRUE(holdsInAChild([] {
        holdInterruptions();
        bool const isNoneYet = heldInterruption() == 0;
        ::raise(SIGTERM);
        return isNoneYet && heldInterruption() == SIGTERM;
    }));
}

TEST(Interruptions, StayIgnoredWhereTheyWere) {
    EXPECT_TRUE(holdsInAChild([] {
        ::signal(SIGHUP, SIG_IGN);
        holdInterruptions();
        ::raise(SIGHUP);
        return heldInterruption() == 0;
    }));
}

} // namespace
} // namespace mac::test
