#include "platform/foundation/bundles/NSBundle.h"
#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

// As if the file had last been written long ago: what is read of younger files is not remembered.
void makeInformationOld(std::string const& file) {
    timespec const times[2]{{1000000000, 0}, {1000000000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
}

std::string toldByLook(BundleLook const& look) {
    auto const textOf = [](id const& value) { return value == nil ? "nil" : std::string(dump(value)); };
    return (look.exists ? "there " : "gone ") + textOf(look.summary.identifier) + " " + textOf(look.summary.version) +
           " " + textOf(look.summary.shortVersion);
}

TEST(LookAtBundle, TellsWhetherThereIsAnItemAndWhichBundleItIs) {
    TemporaryFolder const folder;
    folder.makeFile("Resources.app/Resources/Info.plist", informationFile("com.example.r", "1.0", "10"));
    folder.makeFile("Both.app/Info.plist", informationFile("com.example.second", "", ""));
    folder.makeBundle("Both.app", informationFile("com.example.first", "2.0", "20"));
    folder.makeBundle("Number.app", "<dict><key>CFBundleVersion</key><integer>7</integer></dict>");
    folder.makeFolder("Folder.app");
    struct {
        std::string path;
        char const* expected;
    } const rows[]{
        {folder.path("none"), "gone nil nil nil"},
        {folder.makeFile("file", ""), "there nil nil nil"},
        {folder.path("file/inside"), "gone nil nil nil"},
        {folder.path("Folder.app"), "there nil nil nil"},
        {folder.path("Resources.app"), "there \"com.example.r\" \"10\" \"1.0\""},
        {folder.path("Both.app"), "there \"com.example.first\" \"20\" \"2.0\""},
        {folder.path("Number.app"), "there nil i7 nil"},
    };
    for (int time = 0; time < 2; ++time)
        for (auto const& row : rows)
            EXPECT_EQ(toldByLook(lookAtBundle(path(row.path))), row.expected) << row.path;
    EXPECT_EQ(toldByLook(lookAtBundle(nil)), "gone nil nil nil");
}

TEST(LookAtBundle, SeesEachChangeOfAFileThatItRemembers) {
    TemporaryFolder const folder;
    std::string const made = folder.makeBundle("A.app", informationFile("com.example.a", "1", "1"));
    makeInformationOld(made + "/Contents/Info.plist");
    EXPECT_EQ(toldByLook(lookAtBundle(path(made))), "there \"com.example.a\" \"1\" \"1\"");
    std::string const other = folder.makeFile("other", informationFile("com.example.b", "1", "1"));
    makeInformationOld(other);
    ASSERT_EQ(std::rename(other.c_str(), (made + "/Contents/Info.plist").c_str()), 0);
    EXPECT_EQ(toldByLook(lookAtBundle(path(made))), "there \"com.example.b\" \"1\" \"1\"");
    ASSERT_EQ(::unlink((made + "/Contents/Info.plist").c_str()), 0);
    EXPECT_EQ(toldByLook(lookAtBundle(path(made))), "there nil nil nil");
}

TEST(LookAtBundle, HoldsEqualTextsOfManyBundlesOnce) {
    TemporaryFolder const folder;
    for (char const* const name : {"A.app", "B.app"})
        makeInformationOld(folder.makeBundle(name, informationFile("com.example.a", "1", "2")) +
                           "/Contents/Info.plist");
    auto const look = [&](char const* name) { return lookAtBundle(path(folder.path(name))); };
    look("A.app");
    look("B.app");
    EXPECT_TRUE(isSame(look("A.app").summary.identifier, look("B.app").summary.identifier));
}

} // namespace
} // namespace mac::test
