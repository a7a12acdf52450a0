#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

// The command osa, as a process of its own.

namespace {

using mac::test::ChildProcess;
using mac::test::TemporaryFolder;

// The name that the command is built with.
std::string ownName() {
    std::string const path = OSA;
    return path.substr(path.rfind('/') + 1);
}

struct OsaRun {
    int status{-1};
    std::string errors{};
};

// Runs the command on a script, its standard output redirected by the shell; only the first line of its errors is kept.
OsaRun runOsaInto(std::string const& redirection, std::string const& script) {
    ChildProcess shell({"/bin/sh", "-c", "exec \"$0\" -e \"$1\" 2>&1 " + redirection, OSA, script});
    std::string const errors = shell.readLine();
    return {shell.wait(), errors};
}

} // namespace

TEST(Osa, PrintsTheResult) {
    ChildProcess command({OSA, "-e", "6 * 7"});
    EXPECT_EQ(command.readLine(), "42");
    EXPECT_EQ(command.wait(), 0);
}

TEST(Osa, FailsIfTheResultCannotBeWritten) {
    for (std::string const redirection : {">/dev/full", ">&-"}) {
        OsaRun const done = runOsaInto(redirection, "6 * 7");
        EXPECT_EQ(done.status, 1) << redirection;
        EXPECT_NE(done.errors.find("standard output"), std::string::npos) << done.errors;
    }
}

TEST(Osa, EndsOnceNobodyReadsItsOutput) {
    // A signal that this process ignores would be ignored by the command, too.
    ASSERT_NE(std::signal(SIGPIPE, SIG_DFL), SIG_ERR);
    ChildProcess shell({"/bin/sh", "-c",
                        "exec 3>&1; { \"$0\" -e repeat -e 'log 1' -e 'end repeat'; echo $? >&3; } 2>&1 | "
                        "head -n 1 >/dev/null",
                        OSA});
    EXPECT_EQ(shell.readLine(), std::to_string(128 + SIGPIPE));
}

TEST(Osa, SaysHowItIsUsed) {
    ChildProcess asked({OSA, "--help"});
    EXPECT_TRUE(asked.readLine().starts_with("usage: " + ownName() + " "));
    EXPECT_EQ(asked.wait(), 0);
    for (std::string const option : {"--none", "-x"}) {
        ChildProcess wrong({"/bin/sh", "-c", "exec \"$0\" \"$1\" 2>&1", OSA, option});
        EXPECT_TRUE(wrong.readLine().starts_with(ownName() + ": usage: " + ownName() + " ")) << option;
        EXPECT_EQ(wrong.wait(), 2) << option;
    }
}

TEST(Osa, ReadsTheScript) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("script", "6 * 7");
    ChildProcess command({OSA, file});
    EXPECT_EQ(command.readLine(), "42");
    for (std::string const input :
         {"exec \"$0\" <\"$1\"", "exec \"$0\" - <\"$1\"", "cat \"$1\" | \"$0\"", "cat \"$1\" | \"$0\" /dev/stdin"}) {
        ChildProcess shell({"/bin/sh", "-c", input, OSA, file});
        EXPECT_EQ(shell.readLine(), "42") << input;
        EXPECT_EQ(shell.wait(), 0) << input;
    }
}

TEST(Osa, FailsIfTheScriptCannotBeRead) {
    TemporaryFolder const folder;
    for (std::string const script : {"<&-", "<\"$1\"", "\"$1\"", "\"$1\"/none"}) {
        ChildProcess shell({"/bin/sh", "-c", "exec \"$0\" 2>&1 " + script, OSA, folder.path()});
        std::string const errors = shell.readLine();
        EXPECT_EQ(shell.wait(), 2) << script;
        EXPECT_TRUE(errors.starts_with(ownName() + ": ")) << errors;
    }
}

TEST(Osa, SpeaksByTheNameItWasStartedWith) {
    TemporaryFolder const folder;
    std::string const link = folder.path("another name");
    ASSERT_EQ(::symlink(OSA, link.c_str()), 0);
    ChildProcess named({link, "--help"});
    EXPECT_TRUE(named.readLine().starts_with("usage: another name "));
}

// What the first line on a terminal is when the shell runs these words.
std::string shownOnATerminal(std::string const& words) {
    mac::test::EnvironmentVariable const program("COMMAND", OSA);
    ChildProcess terminal({"/usr/bin/script", "-qec", "\"$COMMAND\" " + words, "/dev/null"});
    std::string const shown = terminal.readLine();
    terminal.wait();
    return shown;
}

TEST(Osa, TellsProgramsTheCharactersOfAnError) {
    OsaRun const done = runOsaInto("", "set a to 1\nget missingOne");
    EXPECT_EQ(done.status, 1);
    EXPECT_TRUE(done.errors.starts_with("15:25: execution error: ")) << done.errors;
}

TEST(Osa, TellsPeopleTheLineAndColumnOfAnError) {
    std::string const inLines = shownOnATerminal("-e 'set a to 1' -e '  get missingOne'");
    EXPECT_TRUE(inLines.starts_with("line 2, column 7: execution error: ")) << inLines;
    TemporaryFolder const folder;
    for (std::string const end : {"\n", "\r\n", "\r"}) {
        std::string const file = folder.makeFile("script", "set a to \"\xC3\xA4\"" + end + "get 1 +" + end);
        std::string const inFile = shownOnATerminal("'" + file + "'");
        EXPECT_TRUE(inFile.starts_with(file + ":2:8: syntax error: ")) << inFile;
    }
}

TEST(Osa, NeedsNoOutputWithoutAResult) {
    OsaRun const done = runOsaInto(">/dev/full", "return");
    EXPECT_EQ(done.status, 0);
    EXPECT_EQ(done.errors, "");
}
