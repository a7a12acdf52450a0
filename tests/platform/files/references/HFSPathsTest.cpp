#include "platform/files/references/HFSPaths.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/items/MountTable.h"
#include <algorithm>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

using Volumes = std::vector<MountedVolume>;

Volumes const& volumes() {
    static Volumes const all = volumesOf(MountTable::parse("1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
                                                           "2 1 8:2 / /home rw - ext4 /dev/sda2 rw\n"
                                                           "3 1 8:17 / /media/ann/STICK rw - vfat /dev/sdb1 rw\n"
                                                           "4 3 8:33 / /media/ann/STICK/in:ner rw - ext4 /dev/sdc1 rw\n"
                                                           "5 1 8:49 / /mnt/\xFF\xC3\x89t rw - ext4 /dev/sdd1 rw\n"
                                                           "6 1 0:40 / /tmp rw - tmpfs tmpfs rw\n"));
    return all;
}

std::string hfs(std::string const& path, bool isFolder = false) {
    std::u16string const text = hfsPathFromPOSIXPath(unitsFromFileSystemBytes(path), isFolder, volumes());
    return fileSystemBytesFromUnits(text).value_or("-");
}

std::string posix(std::string const& path) {
    std::u16string const text = posixPathFromHFSPath(unitsFromFileSystemBytes(path), volumes());
    return fileSystemBytesFromUnits(text).value_or("-");
}

struct Pair {
    char const* posixPath;
    char const* hfsPath;
};

class BothForms : public testing::TestWithParam<Pair> {};

TEST_P(BothForms, AreMadeFromEachOther) {
    EXPECT_EQ(hfs(GetParam().posixPath), GetParam().hfsPath);
    EXPECT_EQ(posix(GetParam().hfsPath), GetParam().posixPath);
}

INSTANTIATE_TEST_SUITE_P(
    HFSPaths, BothForms,
    testing::Values(Pair{"/", "Macintosh HD:"}, Pair{"/a", "Macintosh HD:a"}, Pair{"/a/", "Macintosh HD:a:"},
                    Pair{"/a/b:c", "Macintosh HD:a:b/c"}, Pair{"/home/ann/x", "Macintosh HD:home:ann:x"},
                    Pair{"/tmp/x", "Macintosh HD:tmp:x"}, Pair{"/media/ann/STICK/x", "STICK:x"},
                    Pair{"/media/ann/STICK/", "STICK:"}, Pair{"/media/ann/STICKS", "Macintosh HD:media:ann:STICKS"},
                    Pair{"/media/ann/STICK/in:ner/x", "in/ner:x"}, Pair{"/mnt/\xFF\xC3\x89t/x", "\xFF\xC3\x89t:x"},
                    Pair{"/mnt/\xFE", "Macintosh HD:mnt:\xFE"}, Pair{"/Volumes/gone/x", "Macintosh HD:Volumes:gone:x"},
                    Pair{"/media/ann/STICK/../x", "STICK:..:x"}, Pair{"//a", "Macintosh HD::a"},
                    Pair{"a/b:c", ":a:b/c"}, Pair{"a/", ":a:"}));

TEST(HFSPaths, BeginWithTheLabelOfTheStartupVolume) {
    Volumes const labeled = volumesOf(MountTable::parse("1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"), u"Ann:s disk");
    EXPECT_EQ(hfsPathFromPOSIXPath(u"/a", false, labeled), u"Ann/s disk:a");
    EXPECT_EQ(posixPathFromHFSPath(u"ann/S disk:a", labeled), u"/a");
    EXPECT_EQ(posixPathFromHFSPath(u"Macintosh HD:a", labeled), u"/a");
}

TEST(HFSPaths, OfFoldersEndWithOneColon) {
    EXPECT_EQ(hfs("/a", true), "Macintosh HD:a:");
    EXPECT_EQ(hfs("/a/", true), "Macintosh HD:a:");
    EXPECT_EQ(hfs("/", true), "Macintosh HD:");
    EXPECT_EQ(hfs("a", true), ":a:");
    EXPECT_EQ(hfs("", true), ":");
}

TEST(HFSPaths, OfVolumesAreThoseOfFolders) { EXPECT_EQ(hfs("/media/ann/STICK"), "STICK:"); }

TEST(HFSPaths, OfNothing) {
    EXPECT_EQ(hfs(""), ":");
    EXPECT_EQ(posix(""), "/");
    EXPECT_EQ(posix(":"), "");
}

TEST(HFSPaths, NameVolumesInAnyCase) {
    EXPECT_EQ(posix("macintosh hd:a"), "/a");
    EXPECT_EQ(posix("MACINTOSH HD"), "/");
    EXPECT_EQ(posix("stick:A"), "/media/ann/STICK/A");
    EXPECT_EQ(posix("stick"), "/media/ann/STICK");
    EXPECT_EQ(posix("\xFF\xC3\xA9T:x"), "/mnt/\xFF\xC3\x89t/x");
}

TEST(HFSPaths, OnVolumesThatAreNotMountedLieInVolumes) {
    EXPECT_EQ(posix("Other:a:b/c"), "/Volumes/Other/a/b:c");
    EXPECT_EQ(posix("Oth/er:"), "/Volumes/Oth:er/");
    EXPECT_EQ(posix("Other"), "/Other");
    // Parts of the system have a name, but not for paths.
    EXPECT_EQ(posix("tmp:x"), "/Volumes/tmp/x");
}

TEST(HFSPaths, ThatArePOSIXPathsAlreadyStay) { EXPECT_EQ(posix("/a:b"), "/a:b"); }

TEST(HFSPaths, TakeTextThatNoFileCanHave) {
    std::u16string const path = std::u16string(u"/a\xD800/\0b", 6);
    std::u16string const text = hfsPathFromPOSIXPath(path, false, volumes());
    EXPECT_EQ(text, std::u16string(u"Macintosh HD:a\xD800:\0b", 18));
    EXPECT_EQ(posixPathFromHFSPath(text, volumes()), path);
}

TEST(HFSPaths, KnowTheStartupVolumeWithoutAnyList) {
    EXPECT_EQ(hfsPathFromPOSIXPath(u"/a", false, {}), u"Macintosh HD:a");
    EXPECT_EQ(posixPathFromHFSPath(u"Macintosh HD:a", {}), u"/a");
}

TEST(HFSPaths, AreThoseOfTheVolumesThatAreMounted) {
    std::u16string shown = startupVolumeName();
    std::ranges::replace(shown, u':', u'/');
    EXPECT_EQ(hfsPathFromPOSIXPath(u"/etc/passwd", false), shown + u":etc:passwd");
    EXPECT_EQ(posixPathFromHFSPath(shown + u":etc:passwd"), u"/etc/passwd");
    EXPECT_EQ(posixPathFromHFSPath(u"Macintosh HD:etc:passwd"), u"/etc/passwd");
    EXPECT_EQ(hfsPathFromPOSIXPath(u"a", false), u":a");
    EXPECT_EQ(posixPathFromHFSPath(u":a"), u"a");
}

} // namespace
} // namespace mac::test
