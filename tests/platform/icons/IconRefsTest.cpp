#include "platform/icons/IconRefs.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/icons/IconFamily.h"
#include "tests/platform/icons/IconBytes.h"
#include "tests/support/FinderInformation.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

class IconRefs : public testing::Test {
protected:
    static FSRef referenceTo(std::string const& path) {
        FSRef ref{};
        EXPECT_EQ(FSPathMakeRef(reinterpret_cast<std::uint8_t const*>(path.c_str()), &ref, nullptr), noErr);
        return ref;
    }
    static FSCatalogInfo informationOf(FSRef const& ref) {
        FSCatalogInfo information;
        EXPECT_EQ(FSGetCatalogInfo(&ref, kIconServicesCatalogInfoMask, &information, nullptr, nullptr, nullptr), noErr);
        return information;
    }
    static void setFinderFlags(std::string const& path, std::uint16_t flags) {
        FinderInformation information;
        information.setFinderFlags(flags);
        ASSERT_TRUE(writeFinderInformation(path, information));
    }
    static void setResourceFork(std::string const& path, std::string const& fork) {
        ASSERT_EQ(setxattr(path.c_str(), XATTR_RESOURCEFORK_NAME, fork.data(), fork.size(), 0, 0), 0);
    }
    // The number of the pieces of the item's icon; -1 for one without data.
    static int piecesOfIcon(std::string const& path) {
        FSRef const ref = referenceTo(path);
        FSCatalogInfo const information = informationOf(ref);
        IconRef icon{};
        EXPECT_EQ(GetIconRefFromFileInfo(&ref, 0, nullptr, kIconServicesCatalogInfoMask, &information,
                                         kIconServicesNormalUsageFlag, &icon, nullptr),
                  noErr);
        std::optional<std::vector<IconPart>> const parts = partsOfIcon(icon);
        EXPECT_EQ(ReleaseIconRef(icon), noErr);
        return parts ? static_cast<int>(parts->size()) : -1;
    }

    std::string const m_fork{resourceFork("icns", -16455, iconFamily(iconPiece("is32", "abc")))};
    TemporaryFolder const m_folder{};
};

TEST_F(IconRefs, OfAFileWithAnIconOfItsOwnHaveItsData) {
    std::string const file = m_folder.makeFile("file", "");
    setResourceFork(file, m_fork);
    EXPECT_EQ(piecesOfIcon(file), -1);
    setFinderFlags(file, kHasCustomIcon);
    EXPECT_EQ(piecesOfIcon(file), 1);
}

TEST_F(IconRefs, OfAFolderHaveTheDataOfItsIconFile) {
    std::string const folder = m_folder.makeFolder("folder");
    setFinderFlags(folder, kHasCustomIcon);
    EXPECT_EQ(piecesOfIcon(folder), -1);
    setResourceFork(m_folder.makeFile("folder/Icon\r", ""), m_fork);
    EXPECT_EQ(piecesOfIcon(folder), 1);
}

TEST_F(IconRefs, ThatCannotBeReadHaveNoData) {
    std::string const file = m_folder.makeFile("file", "");
    setFinderFlags(file, kHasCustomIcon);
    setResourceFork(file, resourceFork("icns", -16455, "nonsense"));
    EXPECT_EQ(piecesOfIcon(file), -1);
    setResourceFork(file, "nonsense");
    EXPECT_EQ(piecesOfIcon(file), -1);
}

TEST_F(IconRefs, ComeWithTheLabel) {
    std::string const file = m_folder.makeFile("file", "");
    setFinderFlags(file, 0x000A);
    FSRef const ref = referenceTo(file);
    FSCatalogInfo const information = informationOf(ref);
    std::int16_t label = -1;
    EXPECT_EQ(GetIconRefFromFileInfo(&ref, 0, nullptr, kIconServicesCatalogInfoMask, &information, 0, nullptr, &label),
              noErr);
    EXPECT_EQ(label, 5);
}

TEST_F(IconRefs, AreCounted) {
    FSRef const ref = referenceTo(m_folder.path());
    FSCatalogInfo const information = informationOf(ref);
    IconRef icon{};
    ASSERT_EQ(GetIconRefFromFileInfo(&ref, 0, nullptr, kIconServicesCatalogInfoMask, &information, 0, &icon, nullptr),
              noErr);
    std::uint16_t owners = 0;
    EXPECT_EQ(AcquireIconRef(icon), noErr);
    EXPECT_EQ(GetIconRefOwners(icon, &owners), noErr);
    EXPECT_EQ(owners, 2);
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
    EXPECT_EQ(GetIconRefOwners(icon, nullptr), paramErr);
    EXPECT_EQ(ReleaseIconRef(icon), noErr);
}

TEST_F(IconRefs, AreRefusedForMissingItems) {
    FSRef const none{};
    FSRef const ref = referenceTo(m_folder.path());
    FSCatalogInfo const information = informationOf(ref);
    IconRef icon{};
    constexpr FSCatalogInfoBitmap mask = kIconServicesCatalogInfoMask;
    EXPECT_EQ(GetIconRefFromFileInfo(&none, 0, nullptr, mask, &information, 0, &icon, nullptr), errFSBadFSRef);
    EXPECT_EQ(GetIconRefFromFileInfo(nullptr, 0, nullptr, mask, &information, 0, &icon, nullptr), paramErr);
    EXPECT_EQ(GetIconRefFromFileInfo(&ref, 0, nullptr, mask, nullptr, 0, &icon, nullptr), paramErr);
    EXPECT_EQ(GetIconRefFromFileInfo(&ref, 0, nullptr, kFSCatInfoFinderInfo, &information, 0, &icon, nullptr),
              paramErr);
    EXPECT_EQ(icon, nullptr);
    EXPECT_EQ(AcquireIconRef(nullptr), invalidIconRefErr);
    EXPECT_EQ(ReleaseIconRef(nullptr), invalidIconRefErr);
    std::uint16_t owners = 0;
    EXPECT_EQ(GetIconRefOwners(nullptr, &owners), invalidIconRefErr);
    EXPECT_FALSE(partsOfIcon(nullptr));
}

} // namespace
} // namespace mac::test
