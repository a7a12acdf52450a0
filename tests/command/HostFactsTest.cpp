#include "command/HostFacts.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace framekeeper::test {
namespace {

constexpr char const* OneCopy = R"({"framekeeper": 1, "copies": [{"path": "/\ufffd/Mirror Frame.app",
    "uri": "file:///%FF/Mirror%20Frame.app", "version": "2", "versionString": null, "exists": true,
    "isRunning": true, "processID": 17, "isAutolaunched": false, "isInToolbar": true, "later": {"key": []}}]})";

TEST(HostFacts, TellTheCopiesOfAHostWithEveryByteOfTheirPaths) {
    HostFacts const host = hostFactsFrom("anna", OneCopy);
    EXPECT_EQ(host.name, "anna");
    EXPECT_EQ(host.answer, HostAnswer::Complete) << host.reason;
    ASSERT_EQ(host.copies.size(), 1U);
    CopyFacts const& copy = host.copies.front();
    EXPECT_EQ(copy.path, "/\xff/Mirror Frame.app");
    EXPECT_EQ(copy.version, "2");
    EXPECT_EQ(copy.versionString, "");
    EXPECT_EQ(copy.process, 17);
    EXPECT_TRUE(copy.exists && copy.isRunning && copy.isInToolbar);
    EXPECT_FALSE(copy.isAutolaunched);
}

TEST(HostFacts, KeepTheKeysThatTheGatheringProgramAdded) {
    HostFacts const host = hostFactsFrom(
        "file", R"({"framekeeper": 1, "host": "b\u001berta", "answer": "late", "reason": "not within 60 s",
                    "gathered": "2026-11-22T10:00:00Z"})");
    EXPECT_EQ(host.name, "b\\x1berta");
    EXPECT_EQ(host.answer, HostAnswer::Late);
    EXPECT_EQ(host.reason, "not within 60 s");
    EXPECT_EQ(host.gathered, "2026-11-22T10:00:00Z");
}

TEST(HostFacts, KeepTheCopiesOfACommandThatFailedInPart) {
    std::string document = OneCopy;
    document.insert(1, "\"answer\": \"failed\", ");
    HostFacts const host = hostFactsFrom("anna", document);
    EXPECT_EQ(host.answer, HostAnswer::Failed);
    EXPECT_EQ(host.copies.size(), 1U);
}

TEST(HostFacts, OfAnAnswerThatWasRubbishHoldNoCopies) {
    std::string document = OneCopy;
    document.insert(1, R"("answer": "rubbish", "reason": "no JSON", )");
    HostFacts const host = hostFactsFrom("anna", document);
    EXPECT_EQ(host.answer, HostAnswer::Rubbish);
    EXPECT_EQ(host.reason, "no JSON");
    EXPECT_TRUE(host.copies.empty());
}

TEST(HostFacts, HaveNoReasonIfTheyAreComplete) {
    std::string document = OneCopy;
    document.insert(1, R"("answer": "complete", "reason": "late, but complete", )");
    HostFacts const host = hostFactsFrom("anna", document);
    EXPECT_EQ(host.answer, HostAnswer::Complete);
    EXPECT_EQ(host.reason, "");
    EXPECT_EQ(host.copies.size(), 1U);
}

TEST(HostFacts, AreRubbishIfTheyCannotBeUnderstood) {
    std::string const good = OneCopy;
    auto const replaced = [&](std::string const& from, std::string const& to) {
        std::string document = good;
        EXPECT_NE(document.find(from), std::string::npos);
        return document.replace(document.find(from), from.size(), to);
    };
    for (std::string const& document :
         {std::string("bash: framekeeper-cli: command not found"), good.substr(0, good.size() / 2), std::string("[]"),
          std::string("{}"), std::string(R"({"framekeeper": 1, "results": []})"), replaced("1,", "2,"),
          replaced("file:///%FF/", "file://anna/"), replaced("%FF", "%F"), replaced("%FF", "%00"),
          replaced("\"2\"", "2"), replaced("true", "\"yes\""), replaced("17", "\"17\""),
          replaced("{\"framekeeper\"", R"({"answer": "perhaps", "framekeeper")"),
          replaced("{\"framekeeper\"", R"({"host": 7, "framekeeper")")}) {
        HostFacts const host = hostFactsFrom("anna", document);
        EXPECT_EQ(host.name, "anna");
        EXPECT_EQ(host.answer, HostAnswer::Rubbish) << document;
        EXPECT_NE(host.reason, "") << document;
        EXPECT_TRUE(host.copies.empty()) << document;
    }
}

TEST(HostFacts, AreNeverGivenByAnEmptyFile) {
    EXPECT_EQ(hostFactsFrom("anna", "").answer, HostAnswer::Never);
    EXPECT_EQ(hostFactsFrom("anna", " \n").answer, HostAnswer::Never);
}

TEST(HostFacts, HaveANameForEveryAnswer) {
    EXPECT_STREQ(nameOf(HostAnswer::Complete), "complete");
    EXPECT_STREQ(nameOf(HostAnswer::Failed), "failed");
    EXPECT_STREQ(nameOf(HostAnswer::Late), "late");
    EXPECT_STREQ(nameOf(HostAnswer::Never), "never");
    EXPECT_STREQ(nameOf(HostAnswer::Rubbish), "rubbish");
}

TEST(HostFacts, AreReadFromFoldersAndFilesSortedByHost) {
    mac::test::TemporaryFolder const folder;
    folder.makeFile("room/b.json", OneCopy);
    folder.makeFile("room/\xff.json", OneCopy);
    folder.makeFile("room/notes.txt", "no facts");
    folder.makeFile("room/.hidden.json", "no facts");
    folder.makeFile("room/below/c.json", OneCopy);
    std::string const single = folder.makeFile("a", OneCopy);
    auto const hosts = readHosts({folder.path("room"), single, folder.path("missing.json")});
    ASSERT_TRUE(hosts.hasValue());
    ASSERT_EQ(hosts.value().size(), 4U);
    EXPECT_EQ(hosts.value()[0].name, "\\xff");
    EXPECT_EQ(hosts.value()[1].name, "a");
    EXPECT_EQ(hosts.value()[2].name, "b");
    EXPECT_EQ(hosts.value()[3].name, "missing");
    EXPECT_EQ(hosts.value()[3].answer, HostAnswer::Never);
    EXPECT_NE(hosts.value()[3].reason, "");
}

TEST(HostFacts, AreReadFromFilesAloneAndNotFromWhatMayBlock) {
    mac::test::TemporaryFolder const folder;
    folder.makeFolder("room/folder.json");
    ASSERT_EQ(::mkfifo(folder.path("room/pipe.json").c_str(), 0600), 0);
    auto const hosts = readHosts({folder.path("room")});
    ASSERT_TRUE(hosts.hasValue());
    ASSERT_EQ(hosts.value().size(), 2U);
    for (HostFacts const& host : hosts.value())
        EXPECT_EQ(host.answer, HostAnswer::Rubbish);
}

TEST(HostFacts, NeverComeFromAFileThatCannotBeRead) {
    mac::test::TemporaryFolder const folder;
    folder.makeFolder("room");
    ASSERT_EQ(::symlink("anna.json", folder.path("room/anna.json").c_str()), 0);
    auto const hosts = readHosts({folder.path("room")});
    ASSERT_TRUE(hosts.hasValue() && hosts.value().size() == 1U);
    EXPECT_EQ(hosts.value().front().answer, HostAnswer::Never);
    EXPECT_NE(hosts.value().front().reason, "");
}

// One host's file must not end the report of all others.
TEST(HostFacts, NeverComeFromAFileBelowAFolderThatMayNotBeEntered) {
    mac::test::TemporaryFolder const folder;
    std::string const file = folder.makeFile("closed/anna.json", OneCopy);
    std::string const closed = folder.path("closed");
    mac::test::OrdinaryUser::own(folder.path());
    mac::test::OrdinaryUser::own(closed);
    ASSERT_EQ(::chmod(closed.c_str(), 0), 0);
    {
        mac::test::OrdinaryUser const user;
        auto const hosts = readHosts({file});
        ASSERT_TRUE(hosts.hasValue() && hosts.value().size() == 1U);
        EXPECT_EQ(hosts.value().front().name, "anna");
        EXPECT_EQ(hosts.value().front().answer, HostAnswer::Never);
        // A folder that can be seen, but not listed, may hold any number of hosts.
        auto const unlisted = readHosts({closed});
        ASSERT_FALSE(unlisted.hasValue());
        EXPECT_TRUE(unlisted.problem().is(EACCES));
    }
    ASSERT_EQ(::chmod(closed.c_str(), 0700), 0);
}

TEST(HostFacts, FailForAFolderThatCannotBeListed) {
    mac::test::TemporaryFolder const folder;
    ASSERT_EQ(::symlink("loop", folder.path("loop").c_str()), 0);
    auto const hosts = readHosts({folder.path("loop")});
    ASSERT_FALSE(hosts.hasValue());
    EXPECT_TRUE(hosts.problem().is(ELOOP));
}

TEST(HostFacts, AreReadUpToTheirBound) {
    mac::test::TemporaryFolder const folder;
    std::string const path = folder.makeFile("anna.json", OneCopy);
    // Sparse; all that follows would be zeros.
    ASSERT_EQ(::truncate(path.c_str(), static_cast<::off_t>(LargestFacts) + 1), 0);
    auto const hosts = readHosts({path});
    ASSERT_TRUE(hosts.hasValue() && hosts.value().size() == 1U);
    EXPECT_EQ(hosts.value().front().answer, HostAnswer::Rubbish);
}

TEST(HostFacts, OfASecondFileForOneHostAreRefused) {
    mac::test::TemporaryFolder const folder;
    auto const hosts =
        readHosts({folder.makeFile("one/anna.json", OneCopy), folder.makeFile("two/anna.json", OneCopy)});
    ASSERT_TRUE(hosts.hasValue() && hosts.value().size() == 2U);
    EXPECT_EQ(hosts.value()[0].answer, HostAnswer::Complete);
    EXPECT_EQ(hosts.value()[1].answer, HostAnswer::Rubbish);
    EXPECT_TRUE(hosts.value()[1].copies.empty());
}

} // namespace
} // namespace framekeeper::test
