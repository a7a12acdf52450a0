#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/running/Log.h"
#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

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

// So many that several threads read them.
class LookAtManyBundles : public testing::Test {
protected:
    static constexpr int Count = 600;

    std::string makeBundle(int number) const {
        std::string const text = std::to_string(number);
        return folder.makeBundle(text + ".app", informationFile("com.example." + text, "1." + text, text));
    }
    static std::string toldOf(int number) {
        std::string const text = std::to_string(number);
        return "there \"com.example." + text + "\" \"" + text + "\" \"1." + text + "\"";
    }

    TemporaryFolder const folder{};
};

TEST_F(LookAtManyBundles, TellsOfEachInTheOrderOfThePaths) {
    std::vector<NSString> paths;
    for (int number = 0; number < Count; ++number)
        paths.push_back(path(makeBundle(number)));
    for (int time = 0; time < 2; ++time) {
        std::vector<BundleLook> const looks = lookAtBundles(paths);
        ASSERT_EQ(looks.size(), paths.size());
        for (int number = 0; number < Count; ++number)
            ASSERT_EQ(toldByLook(looks[static_cast<std::size_t>(number)]), toldOf(number));
    }
}

TEST_F(LookAtManyBundles, TellsWhatOneLookAtEachTells) {
    std::vector<NSString> paths{nil, "", path(folder.path("none"))};
    for (int number = 0; number < Count; ++number)
        paths.push_back(path(makeBundle(number)));
    BundleLook const known = lookAtBundle(paths.back());
    ASSERT_EQ(toldByLook(known), toldOf(Count - 1));
    folder.makeFile("damaged.app/Contents/Info.plist", "<plist");
    folder.makeFile("Resources.app/Resources/Info.plist", informationFile("com.example.r", "1.0", "10"));
    folder.makeFolder("Folder.app");
    folder.makeFolder("Inside.app/Contents/Info.plist");
    ASSERT_EQ(::symlink(folder.path("1.app/Contents/Info.plist").c_str(),
                        (folder.makeFolder("Link.app/Contents") + "/Info.plist").c_str()),
              0);
    ASSERT_EQ(::mkfifo((folder.makeFolder("Pipe.app/Contents") + "/Info.plist").c_str(), 0600), 0);
    paths.insert(paths.begin() + Count / 2, path(folder.path("2.app")));
    for (char const* const name :
         {"damaged.app", "Resources.app", "Folder.app", "Inside.app", "Link.app", "Pipe.app", "1.app"})
        paths.push_back(path(folder.path(name)));
    std::vector<BundleLook> const looks = lookAtBundles(paths);
    ASSERT_EQ(looks.size(), paths.size());
    for (std::size_t index = 0; index < paths.size(); ++index)
        ASSERT_EQ(toldByLook(looks[index]), toldByLook(lookAtBundle(paths[index]))) << index;
}

TEST_F(LookAtManyBundles, SeesEachChangeOfAFileThatItRemembers) {
    std::vector<NSString> paths;
    for (int number = 0; number < Count; ++number) {
        std::string const made = makeBundle(number);
        makeInformationOld(made + "/Contents/Info.plist");
        paths.push_back(path(made));
    }
    lookAtBundles(paths);
    std::string const changed = folder.path("400.app/Contents/Info.plist");
    std::string const other = folder.makeFile("other", informationFile("com.example.other", "1", "1"));
    ASSERT_EQ(std::rename(other.c_str(), changed.c_str()), 0);
    EXPECT_EQ(toldByLook(lookAtBundles(paths)[400]), "there \"com.example.other\" \"1\" \"1\"");
    EXPECT_EQ(toldByLook(lookAtBundle(paths[401])), toldOf(401));
}

TEST_F(LookAtManyBundles, LogsEachFileThatCannotBeUsedOnce) {
    std::vector<NSString> paths;
    for (int number = 0; number < Count; ++number) {
        std::string const made =
            number % 200 == 3 ? folder.makeBundle(std::to_string(number) + ".app", "<plist") : makeBundle(number);
        makeInformationOld(made + "/Contents/Info.plist");
        paths.push_back(path(made));
    }
    int lines = 0;
    LogListener const listener{[&](NSString const&) { ++lines; }};
    lookAtBundles(paths);
    EXPECT_EQ(lines, 3);
    lookAtBundles(paths);
    EXPECT_EQ(lines, 3);
}

} // namespace
} // namespace mac::test
