#include "platform/events/AppleEvents.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/processes/Processes.h"
#include "tests/app/InGerman.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/TemporaryFolder.h"
#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// The program as a process of its own.

namespace framekeeper::test {
namespace {

struct Outcome {
    int status;
    std::string errors;
};

// Runs the program with nothing in its environment but what is given, until it ends.
Outcome run(std::vector<std::string> environment) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    ::posix_spawn_file_actions_addclose(&actions, ends[0]);
    std::string program = PROGRAM;
    std::array<char*, 2> const arguments{program.data(), nullptr};
    std::vector<char*> variables;
    variables.reserve(environment.size() + 1);
    for (std::string& variable : environment)
        variables.push_back(variable.data());
    variables.push_back(nullptr);
    pid_t process = 0;
    EXPECT_EQ(::posix_spawn(&process, PROGRAM, &actions, nullptr, arguments.data(), variables.data()), 0);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    Outcome outcome{};
    std::array<char, 4096> buffer;
    for (ssize_t size = 0; (size = ::read(ends[0], buffer.data(), buffer.size())) > 0;)
        outcome.errors.append(buffer.data(), static_cast<std::size_t>(size));
    ::close(ends[0]);
    ::waitpid(process, &outcome.status, 0);
    return outcome;
}

TEST(Program, SaysThatThereIsNoDisplayAndEnds) {
    mac::test::TemporaryFolder const home;
    Outcome const outcome = run({"HOME=" + home.path()});
    EXPECT_TRUE(WIFEXITED(outcome.status));
    EXPECT_EQ(WEXITSTATUS(outcome.status), 1);
    EXPECT_NE(outcome.errors.find("display"), std::string::npos) << outcome.errors;
}

TEST(Program, SaysThatTheDisplayDoesNotAnswerAndEnds) {
    mac::test::TemporaryFolder const home;
    Outcome const outcome = run({"HOME=" + home.path(), "DISPLAY=:4093"});
    EXPECT_TRUE(WIFEXITED(outcome.status));
    EXPECT_EQ(WEXITSTATUS(outcome.status), 1);
    EXPECT_NE(outcome.errors.find("display"), std::string::npos) << outcome.errors;
}

// Runs the program by the shell, which replaces "$0" by its path; its exit status.
int statusOf(std::string const& command) { return mac::test::ChildProcess({"/bin/sh", "-c", command, PROGRAM}).wait(); }

TEST(Program, AnswersHelpAndVersionWithoutADisplay) {
    mac::test::EnvironmentVariable const display("DISPLAY", std::nullopt);
    EXPECT_EQ(statusOf("exec \"$0\" --help >/dev/null"), 0);
    EXPECT_EQ(statusOf("exec \"$0\" --version >/dev/null"), 0);
}

TEST(Program, AnswersHelpInTheUsersLanguage) {
    mac::test::EnvironmentVariable const locale("LC_ALL", "de_DE.UTF-8");
    mac::test::EnvironmentVariable const language("LANGUAGE", "de");
    EXPECT_EQ(statusOf("\"$0\" --help | grep -q '^Aufruf: '"), 0);
    EXPECT_EQ(statusOf("\"$0\" --colour 2>&1 | grep -q '^Aufruf: '"), 0);
}

TEST(Program, FailsIfItsAnswerCannotBeWritten) {
    for (std::string const option : {"--help", "--version"}) {
        EXPECT_EQ(statusOf("exec \"$0\" " + option + " >/dev/full 2>/dev/null"), 1) << "a full disk";
        EXPECT_EQ(statusOf("exec \"$0\" " + option + " >&- 2>/dev/null"), 1) << "no standard output";
        mac::test::TemporaryFolder const folder;
        std::string const pipe = "'" + folder.path("pipe") + "'";
        // The one end that could be read is closed.
        EXPECT_EQ(statusOf("mkfifo " + pipe + "; exec 3<>" + pipe + " 4>" + pipe + "; exec 3<&-; exec \"$0\" " +
                           option + " >&4 2>/dev/null"),
                  1)
            << "a closed pipe";
    }
}

TEST(Program, RefusesWordsThatAreNoOptions) {
    EXPECT_EQ(statusOf("exec \"$0\" --colour 2>/dev/null"), 2);
    EXPECT_EQ(statusOf("exec \"$0\" letter.txt 2>/dev/null"), 2);
    EXPECT_EQ(statusOf("exec \"$0\" \"$(printf 'a\\377')\" 2>/dev/null"), 2);
    EXPECT_EQ(statusOf("exec \"$0\" --colour 2>&-"), 2) << "without standard error";
}

using namespace mac;

// Opens the window on an empty disk and asks the program to quit once it is there; the exit status.
int statusOfOpening() {
    mac::test::TemporaryFolder const home;
    mac::test::EnvironmentVariable const homeVariable("HOME", home.path());
    mac::test::EnvironmentVariable const platform("QT_QPA_PLATFORM", "offscreen");
    mac::test::EnvironmentVariable const narrowed("FRAMEKEEPER_LOCAL_COMPUTER", home.path());
    mac::test::ChildProcess program({PROGRAM});
    ProcessSerialNumber psn;
    EXPECT_EQ(GetProcessForPID(program.pid(), &psn), noErr);
    std::int32_t pid = 0;
    OSStatus status = noErr;
    do
        status = sendEvent(psn, kCoreEventClass, kAEOpenApplication);
    while (status != noErr && GetProcessPID(&psn, &pid) == noErr);
    EXPECT_EQ(sendEvent(psn, kCoreEventClass, kAEQuitApplication), noErr);
    return program.wait();
}

TEST(Program, OpensWithASettingsFolderThatCannotBeMade) {
    mac::test::EnvironmentVariable const settings("XDG_CONFIG_HOME", "/dev/null/settings");
    EXPECT_EQ(statusOfOpening(), 0);
}

TEST(Program, OpensWithALocaleThatDoesNotExist) {
    mac::test::EnvironmentVariable const locale("LC_ALL", "xx_YY.NONE");
    mac::test::EnvironmentVariable const language("LANGUAGE", "zz");
    EXPECT_EQ(statusOfOpening(), 0);
}

TEST(Program, EndsAfterItsReplyWhenAnotherOneAsksItToQuit) {
    mac::test::TemporaryFolder const home;
    mac::test::EnvironmentVariable const homeVariable("HOME", home.path());
    mac::test::EnvironmentVariable const platform("QT_QPA_PLATFORM", "offscreen");
    mac::test::EnvironmentVariable const narrowed("FRAMEKEEPER_LOCAL_COMPUTER", home.path());
    mac::test::ChildProcess program({PROGRAM});
    ProcessSerialNumber psn;
    ASSERT_EQ(GetProcessForPID(program.pid(), &psn), noErr);
    OSStatus status = noErr;
    std::int32_t pid = 0;
    // It answers as soon as its window is there.
    do
        status = sendEvent(psn, kCoreEventClass, kAEOpenApplication);
    while (status != noErr && GetProcessPID(&psn, &pid) == noErr);
    ASSERT_EQ(status, noErr);
    EXPECT_EQ(sendEvent(psn, kCoreEventClass, kAEReopenApplication), noErr);
    EXPECT_EQ(sendEvent(psn, kCoreEventClass, AEEventID("odoc")), errAEEventNotHandled);
    EXPECT_EQ(sendEvent(psn, kCoreEventClass, kAEQuitApplication), noErr);
    EXPECT_EQ(program.wait(), 0);
}

// The window takes it from the program's bundle.
TEST(Program, HasItsCopyrightInTheLanguageOfTheWindow) {
    InGerman const german;
    std::string const bundle = std::filesystem::path(PROGRAM).parent_path().parent_path().parent_path();
    NSString const copyright =
        as<NSString>(NSBundle::bundleWithPath_(NSString::stringWithFileSystemRepresentation_(bundle))
                         .objectForInfoDictionaryKey_("NSHumanReadableCopyright"));
    EXPECT_EQ(
        mac::test::text(NSLocalizedString(copyright, nil)),
        "Copyright © 2026 The Framekeeper authors. Veröffentlicht unter der MIT-Lizenz, ohne jede Gewährleistung.");
}

} // namespace
} // namespace framekeeper::test
