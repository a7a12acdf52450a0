#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Log.h"
#include "platform/system/OpenItems.h"
#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include "tests/platform/system/LongFolder.h"
#include "tests/support/Failures.h"
#include "tests/support/Texts.h"
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {
namespace {

NSBundle bundle(std::string_view bytes) { return NSBundle::bundleWithPath_(path(bytes)); }

std::string identifierOf(std::string_view bytes) {
    NSString const identifier = bundle(bytes).bundleIdentifier();
    return identifier == nil ? "nil" : identifier.UTF8String();
}

// As if the file had last been written long ago.
void makeOld(std::string const& file) {
    timespec const times[2]{{1000000000, 0}, {1000000000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
}

// Collects what is logged during the object's life.
class Log {
public:
    std::vector<std::string> const& lines() const { return m_lines; }

private:
    std::vector<std::string> m_lines;
    LogListener m_listener{[this](NSString const& line) { m_lines.push_back(line.UTF8String()); }};
};

TEST(NSBundle, NeedsAFolder) {
    TemporaryFolder const folder;
    EXPECT_EQ(bundle(folder.path("none")) == nil, true);
    EXPECT_EQ(bundle(folder.makeFile("file", "")) == nil, true);
    EXPECT_EQ(NSBundle::bundleWithPath_(nil) == nil, true);
    EXPECT_EQ(bundle(folder.path()).bundlePath().UTF8String(), folder.path());
}

TEST(NSBundle, WithoutAnInformationFileTellsNothingAndLogsNothing) {
    TemporaryFolder const folder;
    Log const log;
    EXPECT_EQ(bundle(folder.path()).infoDictionary().count(), 0U);
    EXPECT_EQ(identifierOf(folder.path()), "nil");
    EXPECT_TRUE(log.lines().empty());
}

TEST(NSBundle, ThatIsNilTellsNothing) {
    NSBundle const none;
    EXPECT_EQ(none.bundlePath() == nil, true);
    EXPECT_EQ(none.infoDictionary() == nil, true);
    EXPECT_EQ(none.bundleIdentifier() == nil, true);
    EXPECT_EQ(none.objectForInfoDictionaryKey_("key") == nil, true);
    EXPECT_EQ(none.executablePath() == nil, true);
    EXPECT_EQ(none.resourcePath() == nil, true);
    EXPECT_EQ(none.pathForResource_ofType_("a", "b") == nil, true);
}

TEST(NSBundle, FindsItsInformationFileInFourPlacesInTheirOrder) {
    TemporaryFolder const folder;
    for (char const* place :
         {"Support Files/Info.plist", "Resources/Info.plist", "Info.plist", "Contents/Info.plist"}) {
        folder.makeFile(place, informationFile(place, "", ""));
        EXPECT_EQ(identifierOf(folder.path()), place);
    }
}

TEST(NSBundle, ReadsEveryFormOfInformationFile) {
    TemporaryFolder const folder;
    auto const list = NSDictionary::dictionaryWithObject_forKey_("com.example.binary", "CFBundleIdentifier");
    struct {
        char const* name;
        std::string file;
        char const* expected;
    } const rows[]{
        {"xml", informationFile("com.example.xml", "1.0", "10"), "com.example.xml"},
        {"binary", writeList(list, NSPropertyListBinaryFormat_v1_0).bytes, "com.example.binary"},
        {"old", "{ CFBundleIdentifier = com.example.old; }", "com.example.old"},
        {"marked", "\xEF\xBB\xBF" + informationFile("com.example.marked", "1.0", "10"), "com.example.marked"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(identifierOf(folder.makeBundle(row.name, row.file)), row.expected);
}

TEST(NSBundle, TellsVersionsAsTheyAreWritten) {
    TemporaryFolder const folder;
    struct {
        char const* value;
        char const* expected;
    } const rows[]{
        {"<string>3.0</string>", "\"3.0\""},
        {"<string>2.0.0b1</string>", "\"2.0.0b1\""},
        {"<string>1.1.1svn</string>", "\"1.1.1svn\""},
        {"<string>${CURRENT}</string>", "\"${CURRENT}\""},
        {"<string>9f3c2e1</string>", "\"9f3c2e1\""},
        {"<integer>42</integer>", "i42"},
        {"<real>1.5</real>", "r1.5"},
    };
    int number = 0;
    for (auto const& row : rows) {
        std::string const made = folder.makeBundle(
            std::to_string(++number), std::string("<dict><key>CFBundleVersion</key>") + row.value + "</dict>");
        EXPECT_EQ(dump(bundle(made).objectForInfoDictionaryKey_("CFBundleVersion")), row.expected);
    }
    EXPECT_EQ(bundle(folder.makeBundle("none", "<dict/>")).objectForInfoDictionaryKey_("CFBundleVersion") == nil, true);
}

TEST(NSBundle, TakesOnlyTextForAnIdentifier) {
    TemporaryFolder const folder;
    int number = 0;
    for (char const* value : {"<integer>1</integer>", "<string/>", "<array/>", "<true/>", "<data>YQ==</data>"}) {
        std::string const text = std::string("<dict><key>CFBundleIdentifier</key>") + value + "</dict>";
        EXPECT_EQ(identifierOf(folder.makeBundle(std::to_string(++number), text)), "nil") << value;
    }
}

struct BadFile {
    char const* name;
    std::string contents;
    char const* reason;
};

void PrintTo(BadFile const& file, std::ostream* out) { *out << file.name; }

class BadInformationFile : public testing::TestWithParam<BadFile> {};

TEST_P(BadInformationFile, IsLoggedOnceAndReadsAsEmpty) {
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("Bad.app", GetParam().contents);
    Log const log;
    for (int time = 0; time < 3; ++time)
        EXPECT_EQ(bundle(made).infoDictionary().count(), 0U);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"The information file " + made +
                                                    "/Contents/Info.plist cannot be used: " + GetParam().reason});
}

INSTANTIATE_TEST_SUITE_P(
    NSBundle, BadInformationFile,
    testing::Values(
        BadFile{"empty", "", "Cannot parse a NULL or zero-length data"},
        BadFile{"cut", "<plist>\n<dict>\n<key>a</ke",
                "XML parser error: Premature end of document at line 3; Old-style plist parser error: Two "
                "hexadecimal digits or \">\" is missing before \"p\" at line 1"},
        BadFile{"wrongly typed", "<plist><array/></plist>", "It holds no dictionary"},
        BadFile{"entities", "<!DOCTYPE plist [<!ENTITY a \"a\">]>\n<plist><dict/></plist>",
                "XML parser error: There are declarations in the document type at line 1; Old-style plist parser "
                "error: Two hexadecimal digits or \">\" is missing before \"!\" at line 1"},
        BadFile{"two gigabytes",
                std::string("bplist00\x4F\x12\x80\0\0\0\x08\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x01\0\0\0\0\0\0\0\0\0\0\0"
                            "\0\0\0\0\x0E",
                            47),
                "Binary parser error: An object is larger than the file, at offset 8"},
        BadFile{"too large", std::string((std::size_t{4} << 20) + 1, ' '), "It is too large"}));

TEST(NSBundle, NeitherOpensNorWaitsForSpecialFiles) {
    TemporaryFolder const folder;
    folder.makeFolder("Pipe.app/Contents");
    ASSERT_EQ(::mkfifo(folder.path("Pipe.app/Contents/Info.plist").c_str(), 0600), 0);
    folder.makeFolder("Folder.app/Contents/Info.plist");
    folder.makeFolder("Device.app/Contents");
    ASSERT_EQ(::symlink("/dev/zero", folder.path("Device.app/Contents/Info.plist").c_str()), 0);
    folder.makeFolder("Loop.app/Contents");
    ASSERT_EQ(::symlink("Info.plist", folder.path("Loop.app/Contents/Info.plist").c_str()), 0);
    struct {
        char const* name;
        char const* reason;
    } const rows[]{{"Pipe.app", "It is no regular file"},
                   {"Folder.app", "It is a folder"},
                   {"Device.app", "It is no regular file"},
                   {"Loop.app", std::strerror(ELOOP)}};
    for (auto const& row : rows) {
        Log const log;
        for (int time = 0; time < 3; ++time)
            EXPECT_EQ(bundle(folder.path(row.name)).infoDictionary().count(), 0U);
        EXPECT_EQ(log.lines(), std::vector<std::string>{"The information file " + folder.path(row.name) +
                                                        "/Contents/Info.plist cannot be used: " + row.reason});
    }
}

TEST(NSBundle, LogsAFileByItsOwnPathAlsoWhenItIsReadThroughADescriptor) {
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("A.app", "<plist><array/></plist>");
    FileDescriptor const open(::open(made.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    ASSERT_TRUE(open.isOpen());
    Log const log;
    EXPECT_EQ(bundle(descriptorPath(open)).infoDictionary().count(), 0U);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"The information file " + made +
                                                    "/Contents/Info.plist cannot be used: It holds no dictionary"});
}

TEST(NSBundle, LogsAFileAgainWhenItIsBadInAnotherWay) {
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("A.app", "(");
    Log const log;
    bundle(made).infoDictionary();
    bundle(made).infoDictionary();
    EXPECT_EQ(log.lines().size(), 1U);
    folder.makeBundle("A.app", "(((");
    bundle(made).infoDictionary();
    bundle(made).infoDictionary();
    EXPECT_EQ(log.lines().size(), 2U);
    folder.makeBundle("A.app", informationFile("com.example.mended", "", ""));
    EXPECT_EQ(identifierOf(made), "com.example.mended");
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST(NSBundle, ReadsAnUnchangedFileOnce) {
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("A.app", informationFile("com.example.a", "", ""));
    makeOld(made + "/Contents/Info.plist");
    EXPECT_TRUE(isSame(bundle(made).infoDictionary(), bundle(made).infoDictionary()));
}

TEST(NSBundle, ReadsAFileAgainWhenTheSystemCouldNotReadIt) {
    for (int const error : {EIO, EMFILE, ENOMEM, ETIMEDOUT}) {
        TemporaryFolder const folder;
        std::string const made = folder.makeBundle("A.app", informationFile("com.example.a", "", ""));
        makeOld(made + "/Contents/Info.plist");
        Log const log;
        withRefusedCall(SYS_read, error, [&] {
            EXPECT_EQ(identifierOf(made), "nil");
            EXPECT_EQ(identifierOf(made), "nil");
        });
        EXPECT_EQ(log.lines().size(), 1U);
        EXPECT_EQ(identifierOf(made), "com.example.a") << error;
    }
}

TEST(NSBundle, SeesAFileThatIsWrittenAgainInTheSameInstant) {
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("A.app", informationFile("com.example.a", "", ""));
    NSBundle const kept = bundle(made);
    EXPECT_EQ(kept.bundleIdentifier().UTF8String(), "com.example.a");
    folder.makeBundle("A.app", informationFile("com.example.b", "", ""));
    EXPECT_EQ(kept.bundleIdentifier().UTF8String(), "com.example.b");
}

TEST(NSBundle, SeesAFileThatTakesThePlaceOfAnotherOfTheSameSizeAndTime) {
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("A.app", informationFile("com.example.a", "", ""));
    makeOld(made + "/Contents/Info.plist");
    EXPECT_EQ(identifierOf(made), "com.example.a");
    std::string const other = folder.makeFile("other", informationFile("com.example.b", "", ""));
    makeOld(other);
    ASSERT_EQ(std::rename(other.c_str(), (made + "/Contents/Info.plist").c_str()), 0);
    EXPECT_EQ(identifierOf(made), "com.example.b");
}

TEST(NSBundle, SeesThatItsFileHasGone) {
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("A.app", informationFile("com.example.a", "", ""));
    NSBundle const kept = bundle(made);
    EXPECT_EQ(kept.infoDictionary().count(), 1U);
    ASSERT_EQ(::unlink((made + "/Contents/Info.plist").c_str()), 0);
    EXPECT_EQ(kept.infoDictionary().count(), 0U);
}

// One of many paths of the same folder.
std::string spelledOtherwise(std::string_view folder, unsigned number) {
    std::string spelled(folder);
    for (; number > 0; number /= 2)
        spelled += number % 2 == 0 ? "//" : "/.";
    return spelled;
}

TEST(NSBundle, RemembersNoMoreThanItMay) {
    constexpr unsigned kMoreThanIsRemembered = 4100;
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("A.app", informationFile("com.example.a", "", ""));
    makeOld(made + "/Contents/Info.plist");
    NSDictionary const read = bundle(made).infoDictionary();
    for (unsigned number = 1; number < kMoreThanIsRemembered; ++number)
        bundle(spelledOtherwise(made, number)).infoDictionary();
    NSDictionary const again = bundle(made).infoDictionary();
    EXPECT_FALSE(isSame(read, again));
    EXPECT_TRUE(read.isEqual_(again));
}

TEST(NSBundle, IsFoundAtPathsThatAreNotUTF8) {
    TemporaryFolder const folder;
    EXPECT_EQ(identifierOf(folder.makeBundle("n\xE9.app", informationFile("com.example.bytes", "", ""))),
              "com.example.bytes");
}

TEST(NSBundle, IsFoundAtALongerPathThanTheSystemTakes) {
    LongFolder folder;
    folder.makeFolder("A.app");
    folder.makeFolder("A.app/Contents");
    folder.makeFile("A.app/Contents/Info.plist", informationFile("com.example.deep", "", ""));
    EXPECT_EQ(identifierOf(folder.path() + "/A.app"), "com.example.deep");
}

TEST(NSBundle, FindsItsExecutable) {
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("A.app", "{ CFBundleExecutable = program; }");
    EXPECT_EQ(bundle(made).executablePath() == nil, true);
    for (char const* place : {"program", "Contents/MacOS/program", "Contents/Linux/program"}) {
        std::string const program = folder.makeFile(std::string("A.app/") + place, "");
        EXPECT_EQ(bundle(made).executablePath().UTF8String(), program);
    }
}

TEST(NSBundle, TakesOnlyANameForItsExecutable) {
    TemporaryFolder const folder;
    folder.makeFile("A.app/program", "");
    folder.makeFolder("A.app/folder");
    for (char const* name : {"../A.app/program", "/bin/sh", "folder", ""}) {
        std::string const text = std::string("{ CFBundleExecutable = \"") + name + "\"; }";
        EXPECT_EQ(bundle(folder.makeBundle("A.app", text)).executablePath() == nil, true) << name;
    }
}

TEST(NSBundle, FindsItsResources) {
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("A.app", "{}");
    EXPECT_EQ(bundle(made).resourcePath().UTF8String(), made);
    std::string const icon = folder.makeFile("A.app/Contents/Resources/icon.icns", "");
    NSBundle const found = bundle(made);
    EXPECT_EQ(found.resourcePath().UTF8String(), made + "/Contents/Resources");
    EXPECT_EQ(found.pathForResource_ofType_("icon", "icns").UTF8String(), icon);
    EXPECT_EQ(found.pathForResource_ofType_("icon.icns", nil).UTF8String(), icon);
    EXPECT_EQ(found.pathForResource_ofType_("icon.icns", "").UTF8String(), icon);
    EXPECT_EQ(found.pathForResource_ofType_("icon", "png") == nil, true);
    EXPECT_EQ(found.pathForResource_ofType_("", "icns") == nil, true);
    EXPECT_EQ(found.pathForResource_ofType_(nil, nil) == nil, true);
}

TEST(NSBundle, OfAProgramIsTheOneItLiesIn) {
    EXPECT_EQ(bundlePathOfExecutable("/a/X.app/Contents/Linux/program").UTF8String(), "/a/X.app");
    EXPECT_EQ(bundlePathOfExecutable("/a/X.app/Contents/program").UTF8String(), "/a/X.app/Contents");
    EXPECT_EQ(bundlePathOfExecutable("/usr/bin/program").UTF8String(), "/usr/bin");
    EXPECT_EQ(bundlePathOfExecutable("/Linux/program").UTF8String(), "/Linux");
    EXPECT_EQ(bundlePathOfExecutable("/program").UTF8String(), "/");
}

TEST(NSBundle, OfThisProgramIsItsFolder) {
    std::array<char, 4096> buffer{};
    ssize_t const length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    ASSERT_GT(length, 0);
    std::string const program(buffer.data(), static_cast<std::size_t>(length));
    EXPECT_EQ(NSBundle::mainBundle().bundlePath().UTF8String(), program.substr(0, program.rfind('/')));
    EXPECT_EQ(NSBundle::mainBundle().executablePath().UTF8String(), program);
    EXPECT_TRUE(isSame(NSBundle::mainBundle(), NSBundle::mainBundle()));
}

} // namespace
} // namespace mac::test
