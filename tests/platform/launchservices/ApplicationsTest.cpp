#include "platform/launchservices/Applications.h"
#include "platform/desktop/entries/DefaultApplications.h"
#include "platform/files/references/FSRef.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace mac::test {
namespace {

std::string find(NSString const& identifier, NSString const& name = nil, OSType creator = kLSUnknownCreator) {
    NSURL url;
    FSRef ref{};
    if (LSFindApplicationForInfo(creator, identifier, name, &ref, &url) != noErr) return "-";
    EXPECT_TRUE(url.path().isEqualToString_(CFURLCreateFromFSRef(kCFAllocatorDefault, &ref).path()));
    return url.path().fileSystemRepresentation().value_or("");
}

class Applications : public testing::Test {
protected:
    std::string makeApplication(std::string_view name, std::string_view identifier) const {
        return m_folder.makeBundle(name, "{CFBundleIdentifier = \"" + std::string(identifier) +
                                             R"("; CFBundleSignature = "mrfr";})");
    }
    std::string makeEntry(std::string_view name, std::string_view lines) const {
        return m_folder.makeFile(std::string("data/applications/").append(name),
                                 std::string("[Desktop Entry]\nType=Application\nExec=sh %f\n").append(lines));
    }

    TemporaryFolder const m_folder{};
    EnvironmentVariable const m_home{"HOME", m_folder.path()};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_dirs{"XDG_DATA_DIRS", m_folder.path("none")};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("config")};
    EnvironmentVariable const m_configs{"XDG_CONFIG_DIRS", m_folder.path("none")};
    EnvironmentVariable const m_desktop{"XDG_CURRENT_DESKTOP", "Plain:GNOME"};
};

TEST_F(Applications, AreFoundInTheirFolders) {
    std::string const first = makeApplication("Applications/A.app", "com.example.a");
    std::string const deeper = makeApplication("Applications/Tools/B.app", "com.example.b");
    makeApplication("Applications/Tools/More/C.app", "com.example.c");
    makeApplication("Applications/A.app/Contents/D.app", "com.example.d");
    makeApplication("elsewhere/E.app", "com.example.e");
    EXPECT_EQ(find("com.example.a"), first);
    EXPECT_EQ(find("COM.Example.A"), first);
    EXPECT_EQ(find("com.example.b"), deeper);
    for (NSString const& unknown : {NSString("com.example.c"), NSString("com.example.d"), NSString("com.example.e")})
        EXPECT_EQ(find(unknown), "-");
}

TEST_F(Applications, AreFoundByIdentifierThenNameThenCreator) {
    std::string const first = makeApplication("Applications/A.app", "com.example.a");
    std::string const second = makeApplication("Applications/B.app", "com.example.b");
    EXPECT_EQ(find("com.example.b", "A"), second);
    EXPECT_EQ(find("com.example.unknown", "b.APP"), second);
    EXPECT_EQ(find(nil, "a"), first);
    EXPECT_EQ(find(nil, nil, OSType("mrfr")), first);
    EXPECT_EQ(find(nil, nil, OSType("ZZZZ")), "-");
    std::string const third = m_folder.makeBundle("Applications/C.app", "{CFBundleSignature = \"b\u2022ll\";}");
    EXPECT_EQ(find(nil, nil, OSType("b\xA5ll")), third);
}

TEST_F(Applications, ThatAreRegisteredAreFoundAnywhereAsLongAsTheyAreThere) {
    std::string const bundle = makeApplication("elsewhere/Registered.app", "com.example.registered");
    EXPECT_EQ(LSRegisterURL(fileURL(bundle), YES), noErr);
    EXPECT_EQ(find("com.example.registered"), bundle);
    std::string const newer = makeApplication("newer/Registered.app", "com.example.registered");
    FSRef ref{};
    ASSERT_EQ(FSPathMakeRef(reinterpret_cast<std::uint8_t const*>(newer.c_str()), &ref, nullptr), noErr);
    EXPECT_EQ(LSRegisterFSRef(&ref, NO), noErr);
    EXPECT_EQ(find("com.example.registered"), newer);
    ASSERT_EQ(::rename(newer.c_str(), m_folder.path("newer/Away.app").c_str()), 0);
    EXPECT_EQ(find("com.example.registered"), bundle);
    ASSERT_EQ(::rename(m_folder.path("newer/Away.app").c_str(), newer.c_str()), 0);
    EXPECT_EQ(find("com.example.registered"), bundle) << "the other one is forgotten";
    EXPECT_EQ(LSRegisterFSRef(&ref, NO), noErr);
    EXPECT_EQ(find("com.example.registered"), newer);
}

TEST_F(Applications, ThatAreMetDeclareTheirTypes) {
    m_folder.makeBundle("Applications/M.app", R"({CFBundleIdentifier = com.example.m;
        UTImportedTypeDeclarations = ({UTTypeIdentifier = com.example.m.page; UTTypeConformsTo = public.text;
        UTTypeTagSpecification = {"public.filename-extension" = mpage;};});})");
    EXPECT_FALSE(UTTypeConformsTo("com.example.m.page", "public.text"));
    EXPECT_EQ(find("com.example.none"), "-");
    EXPECT_TRUE(UTTypeConformsTo("com.example.m.page", "public.text"));
}

TEST_F(Applications, ThatAreRegisteredDeclareTheirTypes) {
    std::string const bundle = m_folder.makeBundle("T.app", R"({CFBundleIdentifier = com.example.t;
        UTExportedTypeDeclarations = ({UTTypeIdentifier = com.example.t.page; UTTypeConformsTo = public.text;
        UTTypeTagSpecification = {"public.filename-extension" = tpage;};});})");
    EXPECT_FALSE(UTTypeConformsTo("com.example.t.page", "public.text"));
    EXPECT_EQ(LSRegisterURL(fileURL(bundle), YES), noErr);
    EXPECT_TRUE(UTTypeConformsTo("com.example.t.page", "public.text"));
    EXPECT_TRUE(UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, "tpage", nil)
                    .isEqualToString_("com.example.t.page"));
}

TEST_F(Applications, ThatAreNoneAreNotRegistered) {
    EXPECT_EQ(LSRegisterURL(fileURL(m_folder.path("none.app")), YES), fnfErr);
    EXPECT_EQ(LSRegisterURL(fileURL(m_folder.makeFolder("folder")), YES), kLSDataErr);
    EXPECT_EQ(LSRegisterURL(fileURL(m_folder.makeFolder("empty.app")), YES), kLSDataErr);
    EXPECT_EQ(LSRegisterURL(nil, YES), paramErr);
    EXPECT_EQ(LSRegisterFSRef(nullptr, YES), paramErr);
    FSRef const none{};
    EXPECT_EQ(LSRegisterFSRef(&none, YES), fnfErr);
}

TEST_F(Applications, AreNotAnsweredWhereThereAreNone) {
    NSURL url = fileURL("/");
    EXPECT_EQ(LSFindApplicationForInfo(kLSUnknownCreator, "com.example.none", nil, nullptr, &url),
              kLSApplicationNotFoundErr);
    EXPECT_EQ(LSFindApplicationForInfo(kLSUnknownCreator, nil, nil, nullptr, &url), paramErr);
    EXPECT_EQ(LSFindApplicationForInfo(kLSUnknownCreator, "", "", nullptr, nullptr), paramErr);
    EXPECT_TRUE(url.path().isEqualToString_("/"));
    makeApplication("Applications/A.app", "com.example.a");
    EXPECT_EQ(LSFindApplicationForInfo(kLSUnknownCreator, "com.example.a", nil, nullptr, nullptr), noErr);
}

TEST_F(Applications, OfTheDesktopStandInTheirRoles) {
    EXPECT_EQ(find("com.apple.finder"), "-");
    EXPECT_EQ(find("com.apple.ActivityMonitor"), "-");
    EXPECT_EQ(find("com.apple.systempreferences"), "-");
    std::string const browser = makeEntry("files.desktop", "Name=Files\nMimeType=inode/directory;\n");
    m_folder.makeFile("config/mimeapps.list", "[Default Applications]\ninode/directory=files.desktop\n");
    std::string const monitor = makeEntry("monitor.desktop", "Name=M\nCategories=GTK;System;Monitor;\n");
    std::string const settings = makeEntry("settings.desktop", "Name=S\nCategories=Settings;DesktopSettings;\n");
    EXPECT_EQ(find("com.apple.finder"), browser);
    EXPECT_EQ(find("com.apple.ActivityMonitor"), monitor);
    EXPECT_EQ(find("com.apple.systempreferences"), settings);
    // A bundle of that identifier comes first.
    std::string const bundle = makeApplication("Applications/Finder.app", "com.apple.finder");
    EXPECT_EQ(find("com.apple.finder"), bundle);
}

TEST_F(Applications, OfTheDesktopAreThoseThatItShowsAndCanStart) {
    constexpr char categories[] = "Categories=System;Monitor;\n";
    auto const with = [&](std::string_view line) { return std::string(categories).append(line); };
    makeEntry("a.desktop", with("Hidden=true\n"));
    makeEntry("b.desktop", with("NoDisplay=true\n"));
    makeEntry("c.desktop", with("OnlyShowIn=KDE;\n"));
    makeEntry("d.desktop", with("NotShowIn=GNOME;\n"));
    makeEntry("e.desktop", with("Exec=no-such-program-here\n"));
    makeEntry("f.desktop", with("TryExec=" + m_folder.path("no/such/program") + "\n"));
    makeEntry("g.desktop", "Categories=System;Monitor;ConsoleOnly;\n");
    makeEntry("h.desktop", "Categories=System;\n");
    makeEntry("i.txt", categories);
    makeEntry("j.desktop", with("Exec=\"unended\n"));
    EXPECT_FALSE(desktopEntryOfRole("com.apple.activitymonitor"));
    std::string const usual = makeEntry("y.desktop", categories);
    EXPECT_EQ(desktopEntryOfRole("com.apple.activitymonitor"), usual);
    // Made for this desktop.
    std::string const own = makeEntry("z.desktop", with("OnlyShowIn=GNOME;Unity;\n"));
    EXPECT_EQ(desktopEntryOfRole("com.apple.activitymonitor"), own);
    EXPECT_FALSE(desktopEntryOfRole("com.example.other"));
    EXPECT_FALSE(desktopEntryOfRole(""));
}

} // namespace
} // namespace mac::test
