#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/support/Environment.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::applescript::test {

namespace {

using mac::test::EnvironmentVariable;
using mac::test::TemporaryFolder;

std::string textOrErrorOf(std::u16string_view source) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    EXPECT_TRUE(script) << utf8FromUnits(error.message);
    ScriptOutcome const outcome = script->run({});
    if (!outcome.error) return utf8FromUnits(outcome.value.units());
    return utf8FromUnits(outcome.error->message) + " (" + std::to_string(outcome.error->number) + ")";
}

// Stands for the program that asks for an administrator's rights. The real one would ask a person.
// An ordinary user asks, since root needs nobody.
class Asking {
public:
    explicit Asking(std::string const& answer) : m_path("PATH", m_folder.path() + ":/usr/bin:/bin") {
        std::string const program = m_folder.path() + "/pkexec";
        std::ofstream(program) << "#!/bin/sh\n" << answer << "\n";
        ::chmod(program.c_str(), S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH);
        ::chmod(m_folder.path().c_str(), S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH);
        m_user.emplace();
    }
    ~Asking() { m_user.reset(); }
    Asking(Asking const&) = delete;
    Asking& operator=(Asking const&) = delete;

private:
    TemporaryFolder m_folder;
    std::optional<mac::test::OrdinaryUser> m_user;
    EnvironmentVariable m_path;
};

constexpr char Granted[] = "exec \"$@\"";

TEST(ShellScript, RunsWithPrivilegesOnceTheyAreGranted) {
    Asking const asking(Granted);
    EXPECT_EQ(textOrErrorOf(u"do shell script \"echo \\\"a  b\\\"\" with administrator privileges"), "a  b");
    EXPECT_EQ(textOrErrorOf(u"do shell script \"echo no >&2; exit 3\" with administrator privileges"), "no (3)");
    EXPECT_EQ(textOrErrorOf(u"do shell script \"exit 126\" with administrator privileges"),
              "The command exited with a non-zero status. (126)");
    EXPECT_EQ(textOrErrorOf(u"do shell script \"exit 127\" with administrator privileges"),
              "The command exited with a non-zero status. (127)");
}

TEST(ShellScript, TellsThatTheUserDoesNotGrantPrivileges) {
    Asking const asking("exit 126");
    EXPECT_EQ(textOrErrorOf(u"do shell script \"echo a\" with administrator privileges"), "User canceled. (-128)");
}

TEST(ShellScript, TellsThatPrivilegesAreRefused) {
    Asking const asking("echo 'Not authorized.' >&2; exit 127");
    EXPECT_EQ(textOrErrorOf(u"do shell script \"echo a\" with administrator privileges"),
              "A privilege violation occurred. (-10004)");
}

TEST(ShellScript, TellsThatNothingAsksForPrivileges) {
    TemporaryFolder const folder;
    EnvironmentVariable const path("PATH", folder.path() + ":relative:");
    mac::test::OrdinaryUser const user;
    EXPECT_EQ(textOrErrorOf(u"do shell script \"echo a\" with administrator privileges"),
              "A privilege violation occurred. (-10004)");
}

TEST(ShellScript, AsksForNoRightsAsRoot) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root needs nobody's permission";
    TemporaryFolder const folder;
    EnvironmentVariable const path("PATH", folder.path());
    EXPECT_EQ(textOrErrorOf(u"do shell script \"echo a; id -u\" with administrator privileges"), "a\r0");
}

constexpr std::size_t BeyondOneArgument = 1'000'000;
// No limit of the stack's size makes the system take so much.
constexpr std::size_t BeyondAllArguments = 8'000'000;

std::u16string longScript(std::u16string_view command, std::size_t length = BeyondAllArguments) {
    return u"do shell script \"" + std::u16string(command) + u" # " + std::u16string(length, u'x') + u"\"";
}

TEST(ShellScript, RunsACommandOfAnyLength) {
    EXPECT_EQ(textOrErrorOf(longScript(u"printf 'a b'; cat; printf ${#0}")), "a b7");
    EXPECT_EQ(textOrErrorOf(longScript(u"exit 3")), "The command exited with a non-zero status. (3)");
    // The command inherits no descriptor but its three streams.
    EXPECT_EQ(textOrErrorOf(longScript(u"cat <&3 2>/dev/null || printf closed")), "closed");
}

TEST(ShellScript, RunsALongCommandWithPrivileges) {
    Asking const asking(Granted);
    std::u16string const privileged = u" with administrator privileges";
    EXPECT_EQ(textOrErrorOf(longScript(u"printf 'a b'; cat", BeyondOneArgument) + privileged), "a b");
    EXPECT_EQ(textOrErrorOf(longScript(u"exit 3", BeyondOneArgument) + privileged),
              "The command exited with a non-zero status. (3)");
    // As with a short script, the shell sees no arguments or variables by which the script was handed over.
    EXPECT_EQ(textOrErrorOf(longScript(u"echo $0 $# $command$piece", BeyondOneArgument) + privileged), "/bin/sh 0");
}

TEST(ShellScript, JoinsThePiecesOfALongCommandAsTheyWere) {
    Asking const asking(Granted);
    std::u16string command = u"do shell script \"printf '";
    for (int line = 0; line < 60'000; ++line)
        command += u"é \\\\ ";
    command += u"' | cksum\"";
    EXPECT_EQ(textOrErrorOf(command + u" with administrator privileges"), textOrErrorOf(command));
}

// Programs of the same user could write such a file while the user is asked for a password.
TEST(ShellScript, GivesPrivilegesToNoFile) {
    Asking const asking("case \"$*\" in */proc/*|*/fd/*) exit 127;; esac; exec \"$@\"");
    EXPECT_EQ(textOrErrorOf(longScript(u"echo a", BeyondOneArgument) + u" with administrator privileges"), "a");
}

TEST(ShellScript, RefusesAPrivilegedCommandBeyondWhatTheSystemTakes) {
    Asking const asking(Granted);
    EXPECT_TRUE(textOrErrorOf(longScript(u"echo a") + u" with administrator privileges").ends_with(" (-2708)"));
}

TEST(ShellScript, TakesNoPassword) {
    Asking const asking(Granted);
    for (std::u16string_view const parameters :
         {u" user name \"u\" password \"secret\" with administrator privileges", u" password \"secret\""}) {
        EXPECT_EQ(textOrErrorOf(u"do shell script \"echo a\"" + std::u16string(parameters)),
                  "The system itself asks for a user name and password; a script cannot give them. (-10004)");
    }
}

} // namespace

} // namespace mac::applescript::test
