#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/foundation/Encodings.h"
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

TEST(ShellScript, AsksNobodyAsRoot) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root needs nobody's permission";
    TemporaryFolder const folder;
    EnvironmentVariable const path("PATH", folder.path());
    EXPECT_EQ(textOrErrorOf(u"do shell script \"echo a; id -u\" with administrator privileges"), "a\r0");
}

std::u16string longScript(std::u16string_view command) {
    constexpr std::size_t beyondOneArgument = 3'000'000;
    return u"do shell script \"" + std::u16string(command) + u" # " + std::u16string(beyondOneArgument, u'x') + u"\"";
}

TEST(ShellScript, RunsACommandOfAnyLength) {
    EXPECT_EQ(textOrErrorOf(longScript(u"printf 'a b'; cat; printf ${#0}")), "a b7");
    EXPECT_EQ(textOrErrorOf(longScript(u"exit 3")), "The command exited with a non-zero status. (3)");
    // The command inherits no descriptor but its three streams.
    EXPECT_EQ(textOrErrorOf(longScript(u"cat <&3 2>/dev/null || printf closed")), "closed");
}

TEST(ShellScript, RunsALongCommandWithPrivileges) {
    Asking const asking(Granted);
    EXPECT_EQ(textOrErrorOf(longScript(u"printf 'a b'; cat") + u" with administrator privileges"), "a b");
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
