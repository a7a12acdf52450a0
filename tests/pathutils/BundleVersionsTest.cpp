#include "pathutils/BundleVersions.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Log.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <vector>

namespace mac::test {
namespace {

struct Parsed {
    std::string_view version;
    std::int32_t major, minor, subminor;
};

TEST(PxParseVersion, ReadsTheFirstThreeParts) {
    for (Parsed const& row : {
             Parsed{"1.2.3", 1, 2, 3},
             Parsed{"v2.5b3", 2, 5, 0},
             Parsed{"10.4.11.2", 10, 4, 11},
             Parsed{"beta", 0, 0, 0},
             Parsed{"3", 3, 0, 0},
             Parsed{"", 0, 0, 0},
             Parsed{"1..2", 1, 0, 2},
             Parsed{".1", 0, 1, 0},
             Parsed{"...7", 0, 0, 0},
             Parsed{"1.02.0003", 1, 2, 3},
             Parsed{"v1.beta4.rc-5x6", 1, 4, 5},
             Parsed{"-4.-5", 4, 5, 0},
             Parsed{"1 2.3 4", 1, 3, 0},
             Parsed{"2.0.0b1", 2, 0, 0},
             Parsed{"1.1.1svn", 1, 1, 1},
             Parsed{"99999999999.2147483648.2147483647", INT32_MAX, INT32_MAX, INT32_MAX},
             Parsed{"${BUNDLE_VERSION}", 0, 0, 0},
             Parsed{"\xD9\xA3.1", 0, 1, 0},
         }) {
        std::int32_t major = -1;
        std::int32_t minor = -1;
        std::int32_t subminor = -1;
        pxParseVersionToMajor_minor_subminor_(utf8(row.version), &major, &minor, &subminor);
        EXPECT_EQ(major, row.major) << row.version;
        EXPECT_EQ(minor, row.minor) << row.version;
        EXPECT_EQ(subminor, row.subminor) << row.version;
    }
}

struct Trimmed {
    std::string_view version;
    std::string_view two, three;
};

TEST(PxTrimmedVersion, WritesTwoOrThreeNumbers) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    for (Trimmed const& row : {
             Trimmed{"1", "1.0", "1.0"},
             Trimmed{"1.2.0", "1.2", "1.2"},
             Trimmed{"1.2.3", "1.2", "1.2.3"},
             Trimmed{"2.5b3", "2.5", "2.5"},
             Trimmed{"1.2.3.4", "1.2", "1.2.3"},
             Trimmed{"1.0.3", "1.0", "1.0.3"},
             Trimmed{"", "0.0", "0.0"},
             Trimmed{"v1.03", "1.3", "1.3"},
         }) {
        EXPECT_EQ(text(pxTrimmedVersion_(utf8(row.version), 2)), row.two) << row.version;
        EXPECT_EQ(text(pxTrimmedVersion_(utf8(row.version), 3)), row.three) << row.version;
        EXPECT_EQ(text(pxTrimmedVersion(utf8(row.version))), row.three) << row.version;
    }
    EXPECT_TRUE(lines.empty());
}

TEST(PxTrimmedVersion, LogsAnyOtherNumberOfThem) {
    for (std::int32_t const number : {1, 4, 0, -2, INT32_MIN}) {
        std::vector<std::string> lines;
        LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
        EXPECT_TRUE(pxTrimmedVersion_("1.2.3", number) == nil);
        EXPECT_EQ(lines, (std::vector<std::string>{"-[NSString(PXUtils) pxTrimmedVersion:]: ERROR: Not implemented for "
                                                   "maxNumbers = " +
                                                   std::to_string(number)}));
    }
}

struct Compared {
    std::string_view one, other;
    std::int32_t order;
};

TEST(PxVersionCompare, ComparesTheNumbers) {
    for (Compared const& row : {
             Compared{"1.2", "1.2.0", 0},
             Compared{"1.2", "1.2b4", 0},
             Compared{"1.02", "1.2", 0},
             Compared{"v1.3", "1.3", 0},
             Compared{"1.2.3.4", "1.2.3.5", 0},
             Compared{"1.10", "1.9", 1},
             Compared{"1.2.1", "1.2", 1},
             Compared{"2", "1.9.9", 1},
             Compared{"1.0.1", "1.1.0", -1},
             Compared{"beta", "0.0.1", -1},
             Compared{"", "0", 0},
         }) {
        EXPECT_EQ(pxVersionCompare_(utf8(row.one), utf8(row.other)), row.order) << row.one << " " << row.other;
        EXPECT_EQ(pxVersionCompare_(utf8(row.other), utf8(row.one)), -row.order) << row.one << " " << row.other;
    }
    EXPECT_EQ(pxVersionCompare_("1", nil), 1);
    EXPECT_EQ(pxVersionCompare_("0", nil), 0);
}

struct Bundle {
    char const* keys;
    std::string_view version;
};

TEST(PxVersionOfPath, IsThatOfTheBundle) {
    TemporaryFolder const folder;
    int count = 0;
    for (Bundle const& row : {
             Bundle{"<key>CFBundleVersion</key><string>2.0.0</string>", "2.0"},
             Bundle{"<key>CFBundleVersion</key><string>1.1.1svn</string>", "1.1.1"},
             Bundle{"<key>CFBundleVersion</key><string>3.0</string>", "3.0"},
             Bundle{"<key>CFBundleVersion</key><string>2.0.0b1</string>", "2.0"},
             Bundle{"<key>CFBundleVersion</key><string>9f3c2e1</string>", "9.0"},
             Bundle{"<key>CFBundleVersion</key><string>${CURRENT}</string>", "0.0"},
             Bundle{"<key>CFBundleVersion</key><integer>210</integer>", "210.0"},
             Bundle{"<key>CFBundleVersion</key><real>2.5</real>", "2.5"},
             Bundle{"<key>CFBundleVersion</key><string></string>", "0.0"},
             Bundle{"<key>CFBundleVersion</key><array/>", "-"},
             Bundle{"<key>CFBundleVersion</key><string>1.2</string><key>IFMajorVersion</key><integer>3</integer>"
                    "<key>IFMinorVersion</key><integer>1</integer>",
                    "1.2"},
             Bundle{"<key>IFMajorVersion</key><integer>3</integer><key>IFMinorVersion</key><integer>1</integer>",
                    "3.1"},
             Bundle{"<key>IFMajorVersion</key><string>4</string><key>IFMinorVersion</key><integer>2</integer>", "4.2"},
             Bundle{"<key>IFMajorVersion</key><integer>3</integer>", "-"},
             Bundle{"<key>IFMinorVersion</key><integer>1</integer>", "-"},
             Bundle{"<key>CFBundleShortVersionString</key><string>9.9</string>", "-"},
             Bundle{"", "-"},
         }) {
        std::string const bundle =
            folder.makeBundle(std::to_string(++count) + ".app",
                              "<plist version=\"1.0\"><dict>" + std::string(row.keys) + "</dict></plist>");
        EXPECT_EQ(text(pxVersionOfPath(utf8(bundle))), row.version) << row.keys;
    }
}

TEST(PxVersionOfPath, IsNilWithoutABundle) {
    TemporaryFolder const folder;
    EXPECT_TRUE(pxVersionOfPath(utf8(folder.path("missing.app"))) == nil);
    EXPECT_TRUE(pxVersionOfPath(utf8(folder.makeFile("file.app", ""))) == nil);
    EXPECT_TRUE(pxVersionOfPath(utf8(folder.makeFolder("empty.app"))) == nil);
    EXPECT_TRUE(pxVersionOfPath("") == nil);
}

TEST(PxBundleVersions, OfNilAreNone) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    NSString const none;
    std::int32_t number = 7;
    pxParseVersionToMajor_minor_subminor_(none, &number, &number, &number);
    EXPECT_EQ(number, 7);
    EXPECT_TRUE(pxVersionOfPath(none) == nil);
    EXPECT_TRUE(pxTrimmedVersion(none) == nil);
    EXPECT_TRUE(pxTrimmedVersion_(none, 1) == nil);
    EXPECT_EQ(pxVersionCompare_(none, "1"), 0);
    EXPECT_TRUE(lines.empty());
}

TEST(PxBundleVersions, AreMessages) {
    id const version = "v1.2.3";
    EXPECT_EQ(text(as<NSString>(version.performSelector_("pxTrimmedVersion"))), "1.2.3");
    EXPECT_EQ(text(as<NSString>(version.performSelector_withObject_("pxTrimmedVersion:", NSNumber::numberWithInt_(2)))),
              "1.2");
    EXPECT_EQ(as<NSNumber>(version.performSelector_withObject_("pxVersionCompare:", "1.3")).intValue(), -1);
    EXPECT_TRUE(version.performSelector_("pxVersionOfPath") == nil);
}

} // namespace
} // namespace mac::test
