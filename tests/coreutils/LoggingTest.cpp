#include "coreutils/Logging.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/running/Log.h"
#include "platform/system/LogFile.h"
#include "tests/support/Environment.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace mac::test {

namespace {

NSString stringOfBytes(std::string const& bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

std::string bundleInformation(std::string const& values) { return "<plist><dict>" + values + "</dict></plist>"; }

std::string key(std::string const& name, std::string const& value) {
    return "<key>" + name + "</key><string>" + value + "</string>";
}

class Logging : public PrivateMounts {
protected:
    // Nothing is mounted unless a test asks for it.
    void SetUp() override {}

    NSBundle bundleNamed(std::string const& name) const {
        return bundleWith(key("CFBundleName", name) + key("CFBundleShortVersionString", "1.2") +
                          key("CFBundleVersion", "34"));
    }
    NSBundle bundleWith(std::string const& values) const {
        return NSBundle::bundleWithPath_(stringOfBytes(m_folder.makeBundle("A.app", bundleInformation(values))));
    }
    std::string logs(std::string const& name = "") const { return m_folder.path("state/framekeeper/Logs/" + name); }
    static std::string contentsOf(NSString const& path) {
        std::ifstream stream(path.fileSystemRepresentation().value_or(""), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    NSString create(NSBundle const& bundle, BOOL appending, BOOL hasHeader, NSString const& suffix = nil) const {
        return pxCreateLogFileWithAppendingToName_appendingToFile_includeAuxiliaryInformation_(bundle, suffix,
                                                                                               appending, hasHeader);
    }

    TemporaryFolder const m_folder{};
    NSString const m_path = stringOfBytes(m_folder.path("a.log"));

private:
    EnvironmentVariable const m_state{"XDG_STATE_HOME", m_folder.path("state")};
};

std::string const Stamp = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}";

bool matches(std::string const& text, std::string const& pattern) {
    return std::regex_match(text, std::regex(pattern));
}

} // namespace

TEST_F(Logging, GoesToTheUsersLogFolderUnderTheBundlesName) {
    NSBundle const bundle = bundleNamed("Foo");
    EXPECT_EQ(pxLogFilePathWithAppendingToName_(bundle, nil).UTF8String(), logs("Foo.log"));
    EXPECT_EQ(pxLogFilePathWithAppendingToName_(bundle, "-x").UTF8String(), logs("Foo-x.log"));
    EXPECT_EQ(pxLogFilePathWithAppendingToName_(bundle, "").UTF8String(), logs("Foo.log"));
    EXPECT_EQ(pxLogFilePathWithAppendingToName_(bundleNamed("My App 1.0"), nil).UTF8String(), logs("My App 1.0.log"));
    struct stat status {};
    ASSERT_EQ(::stat(logs().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    EXPECT_NE(::access(logs("Foo.log").c_str(), F_OK), 0);
}

TEST_F(Logging, HasNoPathWithoutAName) {
    EXPECT_TRUE(pxLogFilePathWithAppendingToName_(bundleWith(""), "-x") == nil);
    EXPECT_TRUE(pxLogFilePathWithAppendingToName_(bundleNamed(""), nil) == nil);
    EXPECT_TRUE(pxLogFilePathWithAppendingToName_(bundleWith("<key>CFBundleName</key><integer>1</integer>"), nil) ==
                nil);
    EXPECT_TRUE(pxLogFilePathWithAppendingToName_(bundleNamed("../../evil"), nil) == nil);
    EXPECT_TRUE(pxLogFilePathWithAppendingToName_(bundleNamed("Foo"), "/../evil") == nil);
    EXPECT_TRUE(pxLogFilePathWithAppendingToName_(nil, "-x") == nil);
    EXPECT_TRUE(create(bundleWith(""), YES, YES) == nil);
}

TEST_F(Logging, HasNoPathIfTheLogFolderIsAFile) {
    m_folder.makeFile("state/framekeeper/Logs", "a file");
    EXPECT_TRUE(pxLogFilePathWithAppendingToName_(bundleNamed("Foo"), nil) == nil);
    EXPECT_TRUE(create(bundleNamed("Foo"), YES, YES) == nil);
}

TEST_F(Logging, BeginsWithOneHeaderLine) {
    NSString const path = create(bundleNamed("Foo"), NO, YES);
    EXPECT_EQ(path.UTF8String(), logs("Foo.log"));
    EXPECT_TRUE(matches(contentsOf(path), Stamp + " Foo 1\\.2 \\(34\\)\n")) << contentsOf(path);
    EXPECT_TRUE(create(bundleNamed("Foo"), YES, YES).isEqual_(path));
    EXPECT_TRUE(matches(contentsOf(path), Stamp + " Foo 1\\.2 \\(34\\)\n" + Stamp + " Foo 1\\.2 \\(34\\)\n"));
    NSString const other = create(bundleNamed("Foo"), NO, YES, "-x");
    EXPECT_EQ(other.UTF8String(), logs("Foo-x.log"));
    EXPECT_TRUE(matches(contentsOf(other), Stamp + " Foo 1\\.2 \\(34\\)\n"));
}

TEST_F(Logging, BeginsWithNilForVersionsThatTheBundleLacks) {
    NSString const path = create(bundleWith(key("CFBundleName", "Foo")), NO, YES);
    EXPECT_TRUE(matches(contentsOf(path), Stamp + " Foo \\(null\\) \\(\\(null\\)\\)\n")) << contentsOf(path);
}

TEST_F(Logging, EmptiesAnOldFileAlsoWithoutHeaderUnlessItIsAppendedTo) {
    m_folder.makeFile("state/framekeeper/Logs/Foo.log", "old");
    EXPECT_EQ(contentsOf(create(bundleNamed("Foo"), YES, NO)), "old");
    EXPECT_EQ(contentsOf(create(bundleNamed("Foo"), NO, NO)), "");
}

TEST_F(Logging, AppendsMessagesAsTheyAre) {
    pxLog_(m_path, "%@ and %d", NSString("one"), 2);
    pxLog_(m_path, ", then\n");
    pxLog_(m_path, "%s", "text");
    pxLog_(m_path, "");
    EXPECT_EQ(contentsOf(m_path), "one and 2, then\ntext");
}

TEST_F(Logging, AppendsWholeLinesWithTheAuxiliaryFlagAlone) {
    pxLogAux_(m_path, YES, "%@!", NSString("one"));
    pxLogAux_(m_path, YES, "two");
    EXPECT_TRUE(matches(contentsOf(m_path), Stamp + " one!\n" + Stamp + " two\n")) << contentsOf(m_path);
    NSString const other = stringOfBytes(m_folder.path("b.log"));
    pxLogAux_(other, NO, "%@!", NSString("one"));
    pxLogAux_(other, NO, "two");
    EXPECT_EQ(contentsOf(other), "one!two");
}

TEST_F(Logging, WritesMacOSRomanAndDropsWhatItCannotHold) {
    pxLog_(m_path, "%@", NSString("\u00E9\u2026\u20AC"));
    EXPECT_EQ(contentsOf(m_path), "\x8E\xC9\xDB");
    pxLog_(m_path, "%@", NSString("\u4E2D"));
    pxLogAux_(m_path, YES, "%@", NSString("\u4E2D"));
    EXPECT_EQ(contentsOf(m_path), "\x8E\xC9\xDB");
    NSString const path = create(bundleNamed("\u4E2D"), NO, YES);
    EXPECT_EQ(path.UTF8String(), logs("\u4E2D.log"));
    EXPECT_EQ(contentsOf(path), "");
    EXPECT_EQ(::access(logs("\u4E2D.log").c_str(), F_OK), 0);
}

TEST_F(Logging, DoesNotOpenTheFileForAMessageThatCannotBeHeld) {
    pxLog_(m_path, "%@", NSString("\u4E2D"));
    EXPECT_NE(::access(m_folder.path("a.log").c_str(), F_OK), 0);
}

TEST_F(Logging, NeverTakesAMessageForAFormat) {
    pxLog_(m_path, "%@", NSString("%n %s %@ 100%"));
    EXPECT_EQ(contentsOf(m_path), "%n %s %@ 100%");
}

TEST_F(Logging, OpensAStreamThatTheCallerCloses) {
    std::FILE* const first = pxOpenLogFileForPathWithAppending_(m_path, YES);
    ASSERT_NE(first, nullptr);
    std::fputs("one", first);
    EXPECT_EQ(std::fclose(first), 0);
    std::FILE* const second = pxOpenLogFileForPathWithAppending_(m_path, YES);
    ASSERT_NE(second, nullptr);
    std::fputs("two", second);
    EXPECT_EQ(std::fclose(second), 0);
    EXPECT_EQ(contentsOf(m_path), "onetwo");
    std::FILE* const third = pxOpenLogFileForPathWithAppending_(m_path, NO);
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(std::fclose(third), 0);
    EXPECT_EQ(contentsOf(m_path), "");
}

TEST_F(Logging, TellsOfAPathThatNoFileCanHave) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    NSString const path = NSString::stringWithCodeUnits(std::u16string_view(u"/a\0b", 4));
    EXPECT_EQ(pxOpenLogFileForPathWithAppending_(path, YES), nullptr);
    pxLog_(path, "one");
    EXPECT_EQ(lines, std::vector<std::string>(2, "Unable to open logfile: (null)"));
}

TEST_F(Logging, FailsWithoutASignalWhenThePipesReaderHasEnded) {
    std::string const path = m_folder.path("a.log");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    for (std::string const& bytes : {std::string("one"), std::string(1 << 20, 'x')}) {
        int const reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        ASSERT_GE(reader, 0);
        Result<OwnedStream> stream = openLogFile(path, OldLogLines::AreKept, [](std::chrono::milliseconds) {});
        ::close(reader);
        ASSERT_TRUE(stream.hasValue());
        Result<void> const written = appendAndClose(stream.takeValue(), bytes);
        ASSERT_FALSE(written.isDone());
        EXPECT_EQ(written.problem().code, EPIPE);
    }
    sigset_t blocked{};
    sigset_t pending{};
    ::pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    ::sigpending(&pending);
    EXPECT_EQ(::sigismember(&blocked, SIGPIPE), 0);
    EXPECT_EQ(::sigismember(&pending, SIGPIPE), 0);
}

// The pauses themselves are tried by a clock of the test (LogFileTest.cpp); here the thread really waits once.
TEST_F(Logging, WaitsForAFolderThatIsJustBeingCreated) {
    NSString const path = stringOfBytes(m_folder.path("late/a.log"));
    std::thread logger([&] { pxLog_(path, "one"); });
    m_folder.makeFolder("late");
    logger.join();
    EXPECT_EQ(contentsOf(path), "one");
}

// The three operations give up after all of their trials, side by side.
TEST_F(Logging, IsSilentAboutAFileThatCannotBeOpened) {
    NSString const path = stringOfBytes(m_folder.makeFolder("state/framekeeper/Logs/Foo.log"));
    LogListener const listener([](NSString const& line) { ADD_FAILURE() << line.UTF8String(); });
    std::thread logger([&] { pxLog_(path, "one"); });
    std::thread opener([&] { EXPECT_EQ(pxOpenLogFileForPathWithAppending_(path, YES), nullptr); });
    EXPECT_TRUE(create(bundleNamed("Foo"), NO, YES) == nil);
    logger.join();
    opener.join();
}

TEST_F(Logging, OnAFullDiskDropsMessagesAndContinues) {
    pxLog_("/dev/full", "one");
    pxLogAux_("/dev/full", YES, "one");
    PrivateMounts::SetUp();
    if (IsSkipped()) return;
    TemporaryFolder const point;
    mountMemory(point.path(), "size=4k");
    NSString const path = stringOfBytes(point.path("a.log"));
    pxLog_(path, "%@", stringOfBytes(std::string(4095, 'x') + "\n"));
    pxLog_(path, "one\n");
    EXPECT_EQ(contentsOf(path), std::string(4095, 'x') + "\n");
    TearDown();
}

TEST(FormattedString, TakesItsArgumentsFromAnArray) {
    NSArray const one = NSArray::arrayWithObject_("a");
    EXPECT_TRUE(pxFormattedStringWithArguments_("%@-%@", one).isEqualToString_("a-(null)"));
    EXPECT_TRUE(pxFormattedStringWithArguments_("%@ %%", NSArray::arrayWithObject_(NSNumber::numberWithInt_(7)))
                    .isEqualToString_("7 %"));
    EXPECT_TRUE(pxFormattedStringWithArguments_("%@", nil).isEqualToString_("(null)"));
    EXPECT_TRUE(pxFormattedStringWithArguments_("plain", one).isEqualToString_("plain"));
}

TEST(FormattedString, TakesTwentyArgumentsAndNoMore) {
    NSMutableArray const arguments = NSMutableArray::array();
    NSMutableArray const directives = NSMutableArray::array();
    for (int index = 0; index < 22; ++index) {
        arguments.addObject_(NSNumber::numberWithInt_(index));
        directives.addObject_("%@");
    }
    EXPECT_EQ(pxFormattedStringWithArguments_(directives.componentsJoinedByString_(" "), arguments).UTF8String(),
              "0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 (null) (null)");
}

TEST(NilLogging, DoesNothing) {
    EXPECT_TRUE(pxCreateLogFileWithAppendingToName_appendingToFile_includeAuxiliaryInformation_(nil, nil, YES, YES) ==
                nil);
    EXPECT_EQ(pxOpenLogFileForPathWithAppending_(nil, YES), nullptr);
    pxLog_(nil, "one");
    pxLog_(nil, "%d", 1);
    pxLogAux_(nil, YES, "one");
    pxLogAux_(nil, YES, "%d", 1);
    EXPECT_TRUE(pxFormattedStringWithArguments_(nil, NSArray::array()) == nil);
    EXPECT_THROW(pxLog_("/dev/null", nil), NSInvalidArgumentException);
}

} // namespace mac::test
