#include "platform/processes/Processes.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/processes/SerialNumbers.h"
#include "platform/system/processes/ProcessList.h"
#include "tests/platform/processes/Programs.h"
#include <algorithm>
#include <bit>
#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <unistd.h>

namespace mac::test {

namespace {

std::string copyInBundle(TemporaryFolder const& folder, std::string const& name, std::string const& identifier) {
    folder.makeBundle(name, informationFile(identifier, "1.0", "1"));
    return copyOfCat(folder, name + "/Contents/Linux/cat");
}

std::size_t placeOf(ChildProcess const& child, std::vector<ProcessSerialNumber> const& list) {
    return static_cast<std::size_t>(std::ranges::find(list, numberOf(child)) - list.begin());
}

} // namespace

TEST(Processes, TellWhichBundleAChildRunsFrom) {
    TemporaryFolder const folder;
    ChildProcess const child({copyInBundle(folder, "Mirror Frame.app", "com.tidelark.mirrorframe")});
    NSDictionary const information = informationOf(numberOf(child));
    EXPECT_EQ(textAt(information, kIOBundlePathKey), folder.path("Mirror Frame.app"));
    EXPECT_EQ(textAt(information, kCFBundleIdentifierKey), "com.tidelark.mirrorframe");
    EXPECT_EQ(textAt(information, kCFBundleExecutableKey), folder.path("Mirror Frame.app/Contents/Linux/cat"));
    EXPECT_EQ(textAt(information, kCFBundleNameKey), "cat");
    EXPECT_EQ(as<NSNumber>(information.objectForKey_("pid")).intValue(), child.pid());
}

TEST(Processes, AreFoundByWhatIsKnownOfThem) {
    TemporaryFolder const folder;
    NSString const identifier = "com.example.found";
    EXPECT_FALSE(processWith(kCFBundleIdentifierKey, identifier));
    ChildProcess const child({copyInBundle(folder, "A.app", "com.example.found")});
    EXPECT_EQ(processWith(kCFBundleIdentifierKey, identifier), numberOf(child));
    EXPECT_EQ(processWith("pid", NSNumber::numberWithInt_(child.pid())), numberOf(child));
    EXPECT_FALSE(processWith(kCFBundleIdentifierKey, nil)) << "others have none";
    EXPECT_FALSE(processWith(nil, identifier));
}

TEST(Processes, GiveTheirNumberAsOneInteger) {
    TemporaryFolder const folder;
    ChildProcess const child({"/bin/cat"});
    ProcessSerialNumber const psn = numberOf(child);
    auto const value =
        static_cast<std::uint64_t>(as<NSNumber>(informationOf(psn).objectForKey_("PSN")).longLongValue());
    EXPECT_EQ(std::bit_cast<ProcessSerialNumber>(value), psn);
}

TEST(Processes, TellTheInnermostBundleAndNoneWhereThereIsNone) {
    TemporaryFolder const folder;
    ChildProcess const inner({copyInBundle(folder, "A.app/Contents/Library/B.app", "b")});
    EXPECT_EQ(textAt(informationOf(numberOf(inner)), kIOBundlePathKey), folder.path("A.app/Contents/Library/B.app"));
    for (char const* const path : {"plain/cat", ".app/Contents/cat", "C.app/cat"}) {
        ChildProcess const child({copyOfCat(folder, path)});
        NSDictionary const information = informationOf(numberOf(child));
        EXPECT_TRUE(information.objectForKey_(kIOBundlePathKey) == nil) << path;
        EXPECT_TRUE(information.objectForKey_(kCFBundleIdentifierKey) == nil) << path;
        EXPECT_EQ(textAt(information, kCFBundleNameKey), "cat") << path;
    }
}

TEST(Processes, RunFromABundleWithoutAnInformationFile) {
    TemporaryFolder const folder;
    ChildProcess const child({copyOfCat(folder, "A.app/Contents/Linux/cat")});
    NSDictionary const information = informationOf(numberOf(child));
    EXPECT_EQ(textAt(information, kIOBundlePathKey), folder.path("A.app"));
    EXPECT_TRUE(information.objectForKey_(kCFBundleIdentifierKey) == nil);
}

TEST(Processes, KeepABundlePathThatIsNoText) {
    TemporaryFolder const folder;
    ChildProcess const child({copyInBundle(folder, "caf\xE9.app", "com.tidelark.mirrorframe")});
    NSString const path = as<NSString>(informationOf(numberOf(child)).objectForKey_(kIOBundlePathKey));
    EXPECT_EQ(path.fileSystemRepresentation(), folder.path("caf\xE9.app"));
}

TEST(Processes, AreListedInTheOrderOfTheirStart) {
    ChildProcess const first({"/bin/cat"});
    ChildProcess const second({"/bin/cat"});
    std::vector<ProcessSerialNumber> const list = everyProcess();
    EXPECT_LT(placeOf(first, list), list.size());
    EXPECT_LT(placeOf(second, list), list.size());
    std::vector<ProcessIdentity> identities;
    identities.reserve(list.size());
    for (ProcessSerialNumber const& psn : list)
        identities.push_back(identityOf(psn).value());
    EXPECT_TRUE(std::ranges::is_sorted(identities));
    ProcessSerialNumber self;
    ASSERT_EQ(GetCurrentProcess(&self), noErr);
    EXPECT_NE(std::ranges::find(list, self), list.end());
}

TEST(Processes, TellNothingOnceTheyHaveVanishedDuringAWalk) {
    auto child = std::make_unique<ChildProcess>(std::vector<std::string>{"/bin/cat"});
    ProcessSerialNumber const psn = numberOf(*child);
    ProcessSerialNumber walk{0, kNoProcess};
    ASSERT_EQ(GetNextProcess(&walk), noErr);
    child.reset();
    std::int32_t pid = -1;
    while (GetNextProcess(&walk) == noErr) {
        if (walk != psn) continue;
        EXPECT_TRUE(informationOf(walk) == nil);
        EXPECT_EQ(GetProcessPID(&walk, &pid), procNotFound);
    }
    EXPECT_TRUE(informationOf(psn) == nil);
}

TEST(Processes, AreGoneAMomentAfterTheWalkCameToThem) {
    ChildProcess child({"/bin/cat"});
    ProcessSerialNumber const psn = numberOf(child);
    ProcessSerialNumber walk{0, kNoProcess};
    while (walk != psn)
        ASSERT_EQ(GetNextProcess(&walk), noErr);
    child.sendSignal(SIGKILL);
    child.wait();
    EXPECT_TRUE(informationOf(psn) == nil);
}

TEST(Processes, AreGoneOnceTheyHaveEndedThoughNobodyWaitedForThem) {
    ChildProcess child({"/bin/cat"});
    ProcessSerialNumber const psn = numberOf(child);
    child.sendSignal(SIGKILL);
    child.waitUntilEnded();
    std::int32_t pid = -1;
    EXPECT_TRUE(informationOf(psn) == nil);
    EXPECT_EQ(GetProcessPID(&psn, &pid), procNotFound);
    ProcessSerialNumber again;
    EXPECT_EQ(GetProcessForPID(child.pid(), &again), procNotFound);
    child.wait();
    EXPECT_TRUE(informationOf(psn) == nil);
}

TEST(Processes, AreNeverTakenForOthersWithTheirID) {
    ChildProcess const child({"/bin/cat"});
    ProcessIdentity identity = identityOf(numberOf(child)).value();
    // The one that had the ID before.
    identity.startTime -= 1;
    ProcessSerialNumber const old = serialNumberOf(identity);
    std::int32_t pid = -1;
    EXPECT_TRUE(informationOf(old) == nil);
    EXPECT_EQ(GetProcessPID(&old, &pid), procNotFound);
    EXPECT_FALSE(askToEnd(identity));
    EXPECT_FALSE(informationOf(numberOf(child)) == nil) << "it still runs";
}

TEST(Processes, AnswerTheirIDsByNumber) {
    ChildProcess const child({"/bin/cat"});
    ProcessSerialNumber const psn = numberOf(child);
    std::int32_t pid = -1;
    EXPECT_EQ(GetProcessPID(&psn, &pid), noErr);
    EXPECT_EQ(pid, child.pid());
    ProcessSerialNumber const current{0, kCurrentProcess};
    EXPECT_EQ(GetProcessPID(&current, &pid), noErr);
    EXPECT_EQ(pid, ::getpid());
}

TEST(Processes, KnowTheCurrentOneByBothItsNumbers) {
    ProcessSerialNumber self;
    ASSERT_EQ(GetCurrentProcess(&self), noErr);
    ProcessSerialNumber const current{0, kCurrentProcess};
    EXPECT_NE(self, current);
    bool isSame = false;
    EXPECT_EQ(SameProcess(&self, &current, &isSame), noErr);
    EXPECT_TRUE(isSame);
    ChildProcess const child({"/bin/cat"});
    ProcessSerialNumber const other = numberOf(child);
    EXPECT_EQ(SameProcess(&self, &other, &isSame), noErr);
    EXPECT_FALSE(isSame);
    EXPECT_EQ(as<NSNumber>(informationOf(current).objectForKey_("pid")).intValue(), ::getpid());
    EXPECT_TRUE(informationOf(current).isEqual_(informationOf(self)));
}

TEST(Processes, AnswerErrorsForNumbersThatNameNone) {
    std::int32_t pid = -1;
    bool isSame = false;
    ProcessSerialNumber const current{0, kCurrentProcess};
    for (ProcessSerialNumber const psn :
         {ProcessSerialNumber{0, kNoProcess}, ProcessSerialNumber{0, 1}, ProcessSerialNumber{0xFFFFFFFF, 0xFFFFFFFF}}) {
        EXPECT_TRUE(informationOf(psn) == nil);
        EXPECT_EQ(GetProcessPID(&psn, &pid), procNotFound);
        EXPECT_EQ(SameProcess(&psn, &current, &isSame), procNotFound);
    }
    ProcessSerialNumber beyond{0xFFFFFFFF, 0xFFFFFFFF};
    EXPECT_EQ(GetNextProcess(&beyond), procNotFound);
    EXPECT_EQ(GetProcessForPID(0, &beyond), procNotFound);
    EXPECT_EQ(GetProcessForPID(-1, &beyond), procNotFound);
}

TEST(Processes, AnswerAnErrorForANullPointer) {
    ProcessSerialNumber psn;
    std::int32_t pid = -1;
    bool isSame = false;
    EXPECT_EQ(GetNextProcess(nullptr), paramErr);
    EXPECT_EQ(GetCurrentProcess(nullptr), paramErr);
    EXPECT_EQ(GetProcessPID(nullptr, &pid), paramErr);
    EXPECT_EQ(GetProcessPID(&psn, nullptr), paramErr);
    EXPECT_EQ(GetProcessForPID(1, nullptr), paramErr);
    EXPECT_EQ(SameProcess(nullptr, &psn, &isSame), paramErr);
    EXPECT_EQ(SameProcess(&psn, nullptr, &isSame), paramErr);
    EXPECT_EQ(SameProcess(&psn, &psn, nullptr), paramErr);
    EXPECT_TRUE(ProcessInformationCopyDictionary(nullptr, kProcessDictionaryIncludeAllInformationMask) == nil);
}

TEST(Processes, MayBeCalledAnything) {
    TemporaryFolder const folder;
    ChildProcess const child({copyOfCat(folder, "a) Z 1 (b")});
    EXPECT_EQ(textAt(informationOf(numberOf(child)), kCFBundleNameKey), "a) Z 1 (b");
}

TEST(Processes, KeepTheNameOfAProgramThatWasDeleted) {
    TemporaryFolder const folder;
    std::string const path = copyInBundle(folder, "A.app", "a");
    ChildProcess const child({path});
    ASSERT_EQ(::unlink(path.c_str()), 0);
    NSDictionary const information = informationOf(numberOf(child));
    EXPECT_EQ(textAt(information, kCFBundleExecutableKey), path);
    EXPECT_EQ(textAt(information, kIOBundlePathKey), folder.path("A.app"));
    ChildProcess const marked({copyOfCat(folder, "cat (deleted)")});
    EXPECT_EQ(textAt(informationOf(numberOf(marked)), kCFBundleNameKey), "cat (deleted)");
}

TEST(Processes, AreKnownByTheNewPathOfAProgramThatWasRenamed) {
    TemporaryFolder const folder;
    std::string const path = copyInBundle(folder, "A.app", "a");
    ChildProcess const child({path});
    ASSERT_EQ(::rename(path.c_str(), folder.path("A.app/Contents/Linux/other").c_str()), 0);
    EXPECT_EQ(textAt(informationOf(numberOf(child)), kCFBundleNameKey), "other");
    ASSERT_EQ(::rename(folder.path("A.app").c_str(), folder.path("B.app").c_str()), 0);
    EXPECT_EQ(textAt(informationOf(numberOf(child)), kIOBundlePathKey), folder.path("B.app"));
    EXPECT_EQ(textAt(informationOf(numberOf(child)), kCFBundleIdentifierKey), "a");
}

TEST(Processes, KeepTheNameOfAProgramThatWasReplaced) {
    TemporaryFolder const folder;
    std::string const path = copyInBundle(folder, "A.app", "a");
    ChildProcess const child({path});
    ASSERT_EQ(::rename(copyOfCat(folder, "new").c_str(), path.c_str()), 0);
    EXPECT_EQ(textAt(informationOf(numberOf(child)), kCFBundleExecutableKey), path);
    EXPECT_EQ(textAt(informationOf(numberOf(child)), kIOBundlePathKey), folder.path("A.app"));
}

TEST(Processes, AreAskedToEnd) {
    ChildProcess child({"/bin/cat"});
    EXPECT_TRUE(askToEnd(identityOf(numberOf(child)).value()));
    EXPECT_EQ(child.wait(), -SIGTERM);
}

TEST(Processes, RunFromTheBundleOfTheirScript) {
    TemporaryFolder const folder;
    folder.makeBundle("A.app", informationFile("a", "1.0", "1"));
    std::string const script = makeScript(folder, "A.app/Contents/Linux/A", "#!/bin/sh\necho ready\nread line\n");
    std::string const inside = makeScript(folder, "A.app/Contents/Resources/main", "echo ready\nread line\n");
    std::vector<std::vector<std::string>> const commands{
        {script}, {"/bin/sh", inside}, {"/bin/sh", "-u", inside}, {folder.path("./A.app//Contents/Linux/A"), "-c"}};
    for (std::vector<std::string> const& command : commands) {
        ChildProcess const child(command);
        ASSERT_EQ(child.readLine(), "ready");
        NSDictionary const information = informationOf(numberOf(child));
        EXPECT_EQ(textAt(information, kIOBundlePathKey), folder.path("A.app")) << command.back();
        EXPECT_EQ(textAt(information, kCFBundleIdentifierKey), "a") << command.back();
        EXPECT_EQ(textAt(information, kCFBundleExecutableKey), command.front() == "/bin/sh" ? inside : script);
    }
}

TEST(Processes, ThatAreBusyboxRunAScriptOnlyUnderTheNameOfAShell) {
    for (char const* const name : {"sh", "/bin/ash", "busybox-sh/sh"})
        EXPECT_EQ(scriptInCommand("/bin/busybox", {name, "script"}), "script") << name;
    for (char const* const name : {"vi", "/usr/bin/tail", "busybox", ""})
        EXPECT_EQ(scriptInCommand("/bin/busybox", {name, "script"}), std::nullopt) << name;
    EXPECT_EQ(scriptInCommand("/bin/sh", {}), std::nullopt);
}

TEST(Processes, RunFromNoBundleThatTheirArgumentsOnlyMention) {
    TemporaryFolder const folder;
    folder.makeBundle("A.app", informationFile("a", "1.0", "1"));
    std::string const script = makeScript(folder, "A.app/Contents/Linux/A", "#!/bin/sh\necho ready\nread line\n");
    std::string const outside = makeScript(folder, "outside", "#!/bin/sh\necho ready\nread line\n");
    std::vector<std::vector<std::string>> const commands{{outside, script},
                                                         {"/bin/sh", "-c", "echo ready; read line; :", script},
                                                         {"/bin/sh", "-ec", "echo ready; read line; :", script},
                                                         {"/bin/bash", "--rcfile", script, outside},
                                                         {"/bin/sh", "-s", script}};
    for (std::vector<std::string> const& command : commands) {
        ChildProcess const child(command);
        if (command[1] == "-s") child.writeLine("echo ready; read line");
        ASSERT_EQ(child.readLine(), "ready");
        EXPECT_TRUE(informationOf(numberOf(child)).objectForKey_(kIOBundlePathKey) == nil) << command[1];
    }
    // A pager, say, which shows the script.
    ChildProcess const reader({"/usr/bin/tail", "-f", script});
    EXPECT_EQ(reader.readLine(), "#!/bin/sh");
    EXPECT_TRUE(informationOf(numberOf(reader)).objectForKey_(kIOBundlePathKey) == nil);
}

} // namespace mac::test
