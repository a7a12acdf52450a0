#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/platform/applescript/ScriptHome.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/Commands.h"
#include "tests/support/DiskContents.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::applescript::test {

namespace {

using mac::test::EnvironmentVariable;

// A desktop whose programs are shell scripts that write down how they are called.
class DesktopPictureOn : public testing::Test {
protected:
    void makeProgram(std::string const& name, std::string const& commands) const {
        std::string const path = m_home.folder().makeFile(
            "bin/" + name, "#!/bin/sh\necho \"" + name + " $*\" >>'" + m_home.path("calls") + "'\n" + commands + "\n");
        ASSERT_EQ(::chmod(path.c_str(), S_IRWXU), 0);
    }
    std::string calls() const { return mac::test::textOf(m_home.path("calls")); }

    static std::string outcomeOf(std::string const& source) {
        ScriptError error;
        std::optional<CompiledScript> script = CompiledScript::compile(unitsFromFileSystemBytes(source), error);
        if (!script) return utf8FromUnits(error.message);
        ScriptOutcome const outcome = script->run({});
        if (outcome.error)
            return utf8FromUnits(outcome.error->message) + " (" + std::to_string(outcome.error->number) + ")";
        return utf8FromUnits(sourceForm(outcome.value));
    }
    static std::string picture() {
        return outcomeOf("tell application \"Finder\" to set p to desktop picture\nPOSIX path of p");
    }
    static std::string setPicture(std::string const& path) {
        return outcomeOf("tell application \"Finder\" to set desktop picture to POSIX file \"" + path + "\"");
    }

    ScriptHome const m_home{};
    EnvironmentVariable const m_programs{"PATH", m_home.path("bin") + ":/usr/bin:/bin"};
    std::string const m_picture{m_home.folder().makeFile("a b.png", "")};
};

TEST_F(DesktopPictureOn, GNOMEIsAURI) {
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    makeProgram("gsettings", "echo \"'file:///x%20y.png'\"");
    EXPECT_EQ(picture(), "\"/x y.png\"");
    setPicture(m_picture);
    std::string const uri = "'file://" + m_home.path("a%20b.png") + "'";
    EXPECT_EQ(calls(), "gsettings get org.gnome.desktop.background picture-uri\n"
                       "gsettings set org.gnome.desktop.background picture-uri " +
                           uri + "\ngsettings set org.gnome.desktop.background picture-uri-dark " + uri + "\n");
}

TEST_F(DesktopPictureOn, MATEIsAPath) {
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "MATE");
    makeProgram("gsettings", "echo \"'/x y.png'\"");
    EXPECT_EQ(picture(), "\"/x y.png\"");
    setPicture(m_picture);
    EXPECT_TRUE(calls().ends_with("gsettings set org.mate.background picture-filename '" + m_picture + "'\n"));
}

TEST_F(DesktopPictureOn, XfceIsAPropertyOfEachScreen) {
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "XFCE");
    makeProgram("xfconf-query", "case $* in *-l) echo /backdrop/screen0/monitorA/workspace0/color-style\n"
                                "echo /backdrop/screen0/monitorA/workspace0/last-image\n"
                                "echo /backdrop/screen0/monitorB/workspace0/last-image;; *) echo '/x y.png';; esac");
    EXPECT_EQ(picture(), "\"/x y.png\"");
    setPicture(m_picture);
    for (std::string const& monitor : {std::string("A"), std::string("B")})
        EXPECT_NE(calls().find("xfconf-query -c xfce4-desktop -p /backdrop/screen0/monitor" + monitor +
                               "/workspace0/last-image -s " + m_picture + "\n"),
                  std::string::npos);
    makeProgram("xfconf-query", "");
    EXPECT_EQ(picture(), "Finder got an error: The desktop has no picture yet. (-10004)");
}

TEST_F(DesktopPictureOn, XfceIsThatOfItsSettings) {
    if (::access("/usr/bin/xfconf-query", X_OK) != 0) GTEST_SKIP() << "xfconf-query is not installed";
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "XFCE");
    // The bus starts the service that writes the settings, with the bus's own surroundings.
    mac::test::PrivateBus const bus;
    EnvironmentVariable const address("DBUS_SESSION_BUS_ADDRESS", bus.address());
    std::string const property = "/backdrop/screen0/monitor0/workspace0/last-image";
    std::vector<std::string> const make{"xfconf-query", "-c", "xfce4-desktop", "-p", property,
                                        "-n",           "-t", "string",        "-s", "/x y.png"};
    mac::test::outputOf(make);
    EXPECT_EQ(picture(), "\"/x y.png\"");
    setPicture(m_picture);
    EXPECT_EQ(picture(), "\"" + m_picture + "\"");
    EXPECT_EQ(mac::test::outputOf({"xfconf-query", "-c", "xfce4-desktop", "-p", property}), m_picture + "\n");
    mac::test::outputOf({"xfconf-query", "-c", "xfce4-desktop", "-p", "/backdrop", "-r", "-R"});
}

TEST_F(DesktopPictureOn, PlasmaIsInTheFileOfTheShell) {
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "KDE");
    makeProgram("plasma-apply-wallpaperimage", "");
    EXPECT_EQ(picture(), "Can’t get POSIX path of missing value. (-1728)");
    m_home.folder().makeFile(".config/plasma-org.kde.plasma.desktop-appletsrc",
                             "[Containments][1]\nwallpaperplugin=org.kde.image\n\n"
                             "[Containments][1][Wallpaper][org.kde.image][General]\nImage=file:///x%20y.png\n");
    EXPECT_EQ(picture(), "\"/x y.png\"");
    setPicture(m_picture);
    EXPECT_EQ(calls(), "plasma-apply-wallpaperimage " + m_picture + "\n");
}

TEST_F(DesktopPictureOn, LXQtIsInTheSettingsOfItsFileBrowser) {
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "LXQt");
    makeProgram("pcmanfm-qt", "");
    m_home.folder().makeFile(".config/pcmanfm-qt/lxqt/settings.conf", "[Desktop]\nWallpaper=/x y.png\n");
    EXPECT_EQ(picture(), "\"/x y.png\"");
    setPicture(m_picture);
    EXPECT_EQ(calls(), "pcmanfm-qt --set-wallpaper=" + m_picture + "\n");
}

TEST_F(DesktopPictureOn, LXQtsSettingsHaveQuotesAndEscapes) {
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "LXQt");
    makeProgram("pcmanfm-qt", "");
    auto const pictureOf = [&](std::string const& written) {
        m_home.folder().makeFile(".config/pcmanfm-qt/lxqt/settings.conf", "[Desktop]\nWallpaper=" + written + "\n");
        return picture();
    };
    EXPECT_EQ(pictureOf(R"("/a, b;c=d.png")"), R"("/a, b;c=d.png")");
    EXPECT_EQ(pictureOf(R"(/\x20ac\xd83d\xde00.png)"), "\"/€😀.png\"");
    EXPECT_EQ(pictureOf(R"("/a\"b\\c.png")"), R"("/a\"b\\c.png")");
    EXPECT_EQ(pictureOf("/gr\u00fcn.png"), "\"/gr\u00fcn.png\"");
    EXPECT_EQ(pictureOf("\\"), "Can’t get POSIX path of missing value. (-1728)");
}

TEST_F(DesktopPictureOn, PlasmaIsThatOfTheFirstScreenThatIsThere) {
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "KDE");
    makeProgram("plasma-apply-wallpaperimage", "");
    auto const containment = [](std::string const& number, std::string const& keys) {
        std::string const group = "[Containments][" + number + "]";
        return group + "\n" + keys + "\n" + group + "[Wallpaper][org.kde.image][General]\nImage=/" + number +
               ".png\n\n";
    };
    m_home.folder().makeFile(".config/kactivitymanagerdrc", "[main]\ncurrentActivity=now\n");
    m_home.folder().makeFile(".config/plasma-org.kde.plasma.desktop-appletsrc",
                             containment("1", "lastScreen=-1\nactivityId=now\nwallpaperplugin=org.kde.image\n") +
                                 containment("2", "lastScreen=0\nactivityId=now\nwallpaperplugin=org.kde.color\n") +
                                 containment("3", "lastScreen=0\nactivityId=before\nwallpaperplugin=org.kde.image\n") +
                                 containment("4", "lastScreen=1\nactivityId=now\nwallpaperplugin=org.kde.image\n") +
                                 containment("5", "lastScreen=0\nactivityId=now\nwallpaperplugin=org.kde.image\n"));
    EXPECT_EQ(picture(), "\"/5.png\"");
}

TEST_F(DesktopPictureOn, AnUnknownOneIsRefusedAndSoIsAMissingProgram) {
    {
        EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "Unknown");
        EXPECT_EQ(picture(), "Finder got an error: This desktop does not tell programs about its picture. (-10004)");
        EXPECT_EQ(setPicture(m_picture),
                  "Finder got an error: This desktop does not tell programs about its picture. (-10004)");
    }
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "GNOME");
    EnvironmentVariable const programs("PATH", m_home.path("none"));
    EXPECT_EQ(picture(), "Finder got an error: The program “gsettings” is missing. (-10004)");
}

} // namespace

} // namespace mac::applescript::test
