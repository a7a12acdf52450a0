#include "platform/system/StandardStreams.h"
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
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

// Another program that shares the stream, such as a remote shell, may have set it not to block.
TEST(StandardStreams, WaitWhereTheyDoNotBlock) {
    EXPECT_TRUE(holdsInAChild([] {
        int ends[2];
        if (::pipe2(ends, O_NONBLOCK) != 0) return false;
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[1]);
        std::string const some(4096, 'x');
        std::size_t written = 0;
        while (::write(STDOUT_FILENO, some.data(), some.size()) > 0)
            written += some.size();
        std::size_t seen = 0;
        std::thread reader([&] {
            std::string bytes(4096, 'x');
            ::fcntl(ends[0], F_SETFL, 0);
            for (ssize_t count = 0; (count = ::read(ends[0], bytes.data(), bytes.size())) > 0;)
                seen += static_cast<std::size_t>(count);
        });
        bool const isDone = writeTo(StandardStream::Output, std::string(100000, 'x')).isDone();
        ::close(STDOUT_FILENO);
        reader.join();
        return isDone && seen == written + 100000;
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
