#include "platform/icons/IconTheme.h"
#include "tests/platform/icons/ThemeHome.h"

namespace mac::test {
namespace {

constexpr std::uint32_t SmallPixel = 0xFF102030;
constexpr std::uint32_t LargePixel = 0xFFA0B0C0;

// "16 32 48 128"
std::string sidesOf(std::vector<SharedPicture> const& pictures) {
    std::string text;
    for (SharedPicture const& picture : pictures)
        text += (text.empty() ? "" : " ") + std::to_string(picture->width);
    return text;
}

class IconThemes : public ThemeHome {};

TEST_F(IconThemes, HaveThePictureThatSuitsTheSideBest) {
    makeTheme("hicolor");
    makeIcon("hicolor/small/app", 16, SmallPixel);
    makeIcon("hicolor/large/app", 48, LargePixel);
    std::vector<SharedPicture> const pictures = picturesInTheme({"app"});
    EXPECT_EQ(sidesOf(pictures), "16 32 48 128");
    EXPECT_EQ(pictures[0]->pixels[0], SmallPixel);
    EXPECT_EQ(pictures[1]->pixels[0], LargePixel);
    EXPECT_EQ(pictures[2]->pixels[0], LargePixel);
    EXPECT_EQ(pictures[3]->pixels[0], LargePixel);
    EXPECT_EQ(pictures[3]->size, NSMakeSize(128, 128));
}

TEST_F(IconThemes, HaveTheFirstOfTheNames) {
    makeTheme("hicolor");
    makeIcon("hicolor/small/second", 16, SmallPixel);
    makeIcon("hicolor/small/third", 16, LargePixel);
    EXPECT_EQ(pixelOf(picturesInTheme({"first", "second", "third"})), SmallPixel);
    EXPECT_TRUE(picturesInTheme({"first", "", "../small/second", "/small/second"}).empty());
    EXPECT_TRUE(picturesInTheme({}).empty());
}

TEST_F(IconThemes, AreTheChosenOneAndThoseThatItInheritsFrom) {
    makeTheme("hicolor");
    makeIcon("hicolor/small/app", 16, 0xFF000001);
    makeIcon("hicolor/small/last", 16, 0xFF000001);
    makeTheme("Parent", "Inherits=Chosen,Parent\n");
    makeIcon("Parent/small/app", 16, 0xFF000002);
    makeIcon("Parent/small/inherited", 16, 0xFF000002);
    makeTheme("Chosen", "Inherits=Parent,hicolor\n");
    makeIcon("Chosen/small/app", 16, 0xFF000003);
    m_folder.makeFile("config/gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name=Chosen\n");
    EXPECT_EQ(pixelOf(picturesInTheme({"app"})), 0xFF000003U);
    EXPECT_EQ(pixelOf(picturesInTheme({"inherited"})), 0xFF000002U);
    EXPECT_EQ(pixelOf(picturesInTheme({"last"})), 0xFF000001U);
    // A general name in the nearer theme comes before a particular one in the farther.
    EXPECT_EQ(pixelOf(picturesInTheme({"last", "inherited"})), 0xFF000002U);
}

TEST_F(IconThemes, AreLookedAtAnewWhenAnotherIsChosen) {
    for (std::uint32_t const number : {1U, 2U}) {
        std::string const name = "Theme" + std::to_string(number);
        makeTheme(name);
        makeIcon(name + "/small/app", 16, 0xFF000000 | number);
        m_folder.makeFile("config/kdeglobals", "[Icons]\nTheme=" + name + "\n");
        EXPECT_EQ(pixelOf(picturesInTheme({"app"})), 0xFF000000 | number);
    }
}

TEST_F(IconThemes, ThatLeadElsewhereAreIgnored) {
    m_folder.makeFile("data/icons/hicolor/index.theme",
                      "[Icon Theme]\nDirectories=../../outside,dense,bad\n[../../outside]\nSize=16\n"
                      "[dense]\nSize=16\nScale=2\n[bad]\nSize=99999999999999\n");
    for (char const* const folder : {"../outside", "hicolor/dense", "hicolor/bad"})
        makeIcon(std::string(folder) + "/app", 16, SmallPixel);
    m_folder.makeFile("config/gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name=../outside\n");
    EXPECT_TRUE(picturesInTheme({"app"}).empty());
}

TEST_F(IconThemes, PassOverPicturesThatCannotBeRead) {
    makeTheme("hicolor");
    m_folder.makeFile("data/icons/hicolor/small/app.png", "no picture");
    makeIcon("hicolor/large/app", 48, LargePixel);
    EXPECT_EQ(pixelOf(picturesInTheme({"app"})), LargePixel);
}

TEST_F(IconThemes, MayBeDrawings) {
    makeTheme("hicolor");
    m_folder.makeFile("data/icons/hicolor/large/app.svg",
                      "<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'>"
                      "<rect width='8' height='8' fill='#00ff00'/></svg>");
    EXPECT_EQ(pixelOf(picturesInTheme({"app"})), 0xFF00FF00U);
}

TEST_F(IconThemes, AFileOfAPictureHasAllSides) {
    std::string const file = m_folder.makeFile("picture.png", pictureFile(200, LargePixel));
    std::vector<SharedPicture> const pictures = picturesInThemeFile(file);
    EXPECT_EQ(sidesOf(pictures), "16 32 48 128 200");
    EXPECT_EQ(pixelOf(pictures), LargePixel);
    EXPECT_TRUE(picturesInThemeFile(m_folder.path("missing.png")).empty());
    EXPECT_TRUE(picturesInThemeFile(m_folder.path()).empty());
}

TEST(IconSides, AreScaledFromTheNextLargerPicture) {
    std::vector<Picture> pictures{emptyPicture(64, 64), emptyPicture(24, 24)};
    pictures[0].pixels.assign(pictures[0].pixels.size(), LargePixel);
    pictures[1].pixels.assign(pictures[1].pixels.size(), SmallPixel);
    std::vector<SharedPicture> const sides = picturesInIconSides(pictures);
    EXPECT_EQ(sidesOf(sides), "16 32 48 128");
    EXPECT_EQ(sides[0]->pixels[0], SmallPixel);
    EXPECT_EQ(sides[1]->pixels[0], LargePixel);
    EXPECT_TRUE(picturesInIconSides({}).empty());
}

TEST(IconSides, AreSquares) {
    Picture wide = emptyPicture(32, 16);
    wide.pixels.assign(wide.pixels.size(), LargePixel);
    std::vector<SharedPicture> const sides = picturesInIconSides({wide});
    EXPECT_EQ(sides[1]->height, 32);
    EXPECT_EQ(sides[1]->pixels[0], 0U);
    EXPECT_EQ(sides[1]->pixels[std::size_t{16} * 32], LargePixel);
}

} // namespace
} // namespace mac::test
