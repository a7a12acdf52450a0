#include "platform/appkit/workspace/NSWorkspace.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace mac::test {
namespace {

class Workspace : public testing::Test {
protected:
    static bool launch(NSString const& identifier) {
        return NSWorkspace::sharedWorkspace()
            .launchAppWithBundleIdentifier_options_additionalEventParamDescriptor_launchIdentifier_(
                identifier, NSWorkspaceLaunchDefault, NSAppleEventDescriptor::nullDescriptor(), nullptr);
    }
    // A program that writes a line into the desktop's log, and ends with its input.
    std::string makeProgram(std::string const& relative) const {
        std::string path = m_desktop.folder.makeFile(relative, "#!/bin/sh\necho \"$0 $*\" >>'" + m_desktop.log() +
                                                                   "'\nread -r line\n");
        EXPECT_EQ(::chmod(path.c_str(), 0755), 0);
        return path;
    }
    std::string makeTool() const {
        m_desktop.folder.makeBundle("home/Applications/Tool.app",
                                    "{CFBundleIdentifier = \"com.example.tool\"; CFBundleExecutable = Tool;"
                                    " CFBundlePackageType = APPL;}");
        return makeProgram("home/Applications/Tool.app/Contents/Linux/Tool");
    }
    void makeMonitor(std::string const& program, std::string const& rest) const {
        m_desktop.folder.makeFile(
            "data/applications/monitor.desktop",
            "[Desktop Entry]\nType=Application\nName=Monitor\nCategories=System;Monitor;\nExec=\"" + program +
                "\" %F\n" + rest);
    }

    Desktop const m_desktop{};
};

TEST_F(Workspace, IsOne) {
    EXPECT_TRUE(isSame(NSWorkspace::sharedWorkspace(), NSWorkspace::sharedWorkspace()));
    EXPECT_TRUE(isSame(NSClassFromString("NSWorkspace"), classOf<NSWorkspace>()));
}

TEST_F(Workspace, SelectsAndOpensInTheFileBrowser) {
    m_desktop.install(m_desktop.fake("open") + " %U");
    m_desktop.installService(m_desktop.fake("serve"));
    NSString const file = NSString::stringWithFileSystemRepresentation_(m_desktop.folder.makeFile("folder/\xE9", ""));
    NSWorkspace const workspace = NSWorkspace::sharedWorkspace();
    EXPECT_TRUE(workspace.selectFile_inFileViewerRootedAtPath_(file, ""));
    EXPECT_EQ(m_desktop.lastLine(), "ShowItems file://" + m_desktop.folder.path("folder/%E9"));
    EXPECT_TRUE(workspace.openFile_(file.stringByDeletingLastPathComponent()));
    EXPECT_EQ(m_desktop.lastLine(), "ShowFolders file://" + m_desktop.folder.path("folder"));
}

TEST_F(Workspace, FailsForMissingItems) {
    m_desktop.install(m_desktop.fake("open") + " %U");
    NSWorkspace const workspace = NSWorkspace::sharedWorkspace();
    for (NSString const& missing :
         {path(m_desktop.folder.path("none")), NSString("relative"), NSString(""), NSString(nil)}) {
        EXPECT_FALSE(workspace.selectFile_inFileViewerRootedAtPath_(missing, nil));
        EXPECT_FALSE(workspace.openFile_(missing));
    }
    EXPECT_FALSE(launch("com.example.none"));
    EXPECT_FALSE(launch(""));
    EXPECT_FALSE(launch(nil));
    EXPECT_FALSE(launch("com.apple.ActivityMonitor")) << "there is none";
    EXPECT_TRUE(m_desktop.lines().empty());
}

TEST_F(Workspace, LaunchesTheApplicationInARole) {
    std::string const program = makeProgram("bin/monitor");
    makeMonitor(program, "");
    EXPECT_TRUE(launch("com.apple.ActivityMonitor"));
    EXPECT_EQ(m_desktop.lines(1), std::vector{program + " "});
}

TEST_F(Workspace, LaunchesAnApplicationForTerminalsInOne) {
    std::string const program = makeProgram("bin/monitor");
    std::string const terminal = makeProgram("bin/x-terminal-emulator");
    EnvironmentVariable const path("PATH", m_desktop.folder.path("bin") + ":/usr/bin:/bin");
    makeMonitor(program, "Terminal=true\n");
    EXPECT_TRUE(launch("com.apple.ActivityMonitor"));
    EXPECT_EQ(m_desktop.lines(1), std::vector{terminal + " -e " + program});
}

TEST_F(Workspace, LaunchesNoProgramWithoutADisplay) {
    makeMonitor(makeProgram("bin/monitor"), "");
    EnvironmentVariable const none("DISPLAY", "");
    EXPECT_FALSE(launch("com.apple.ActivityMonitor"));
    EXPECT_TRUE(m_desktop.lines().empty());
}

TEST_F(Workspace, LaunchesABundleByItsIdentifier) {
    std::string const program = makeTool();
    EXPECT_TRUE(launch("com.example.tool"));
    EXPECT_EQ(m_desktop.lines(1), std::vector{program + " "});
}

TEST_F(Workspace, StartsNoBundleThatRuns) {
    std::string const program = makeTool();
    {
        ChildProcess const running({program, "first"});
        ASSERT_EQ(m_desktop.lines(1), std::vector{program + " first"});
        EXPECT_TRUE(launch("com.example.tool"));
    }
    m_desktop.folder.makeFile(program.substr(m_desktop.folder.path().size() + 1),
                              "#!/bin/sh\necho last >>'" + m_desktop.log() + "'\n");
    EXPECT_TRUE(launch("com.example.tool")) << "it has ended";
    EXPECT_EQ(m_desktop.lines(2), (std::vector<std::string>{program + " first", "last"}));
}

TEST_F(Workspace, StartsABundleThatRunsInAnotherSession) {
    std::string const program = makeTool();
    EnvironmentVariable display("DISPLAY", ":of-another");
    ChildProcess const running({program, "there"});
    ASSERT_EQ(m_desktop.lines(1), std::vector{program + " there"});
    EnvironmentVariable const own("DISPLAY", ":of-nobody");
    EXPECT_TRUE(launch("com.example.tool"));
    EXPECT_EQ(m_desktop.lines(2), (std::vector{program + " there", program + " "}));
}

TEST_F(Workspace, StartsNoEntryWhoseProgramRuns) {
    std::string const program = makeProgram("bin/monitor");
    makeMonitor(program, "");
    {
        ChildProcess const running({program, "first"});
        ASSERT_EQ(m_desktop.lines(1), std::vector{program + " first"});
        EXPECT_TRUE(launch("com.apple.ActivityMonitor"));
    }
    makeMonitor(program, "Exec=\"" + program + "\" last\n");
    EXPECT_TRUE(launch("com.apple.ActivityMonitor")) << "it has ended";
    EXPECT_EQ(m_desktop.lines(2), (std::vector{program + " first", program + " last"}));
}

TEST_F(Workspace, StartsTheFileBrowserAsTheFinder) {
    m_desktop.install(m_desktop.fake("serve"));
    m_desktop.installService(m_desktop.fake("serve"));
    EXPECT_TRUE(launch("com.apple.finder"));
    EXPECT_EQ(m_desktop.lines(1), std::vector<std::string>{"started serve"});
}

TEST_F(Workspace, OfNilDoesNothing) {
    NSWorkspace const workspace = nil;
    EXPECT_FALSE(workspace.selectFile_inFileViewerRootedAtPath_("/", ""));
    EXPECT_FALSE(workspace.openFile_("/"));
    EXPECT_FALSE(workspace.launchAppWithBundleIdentifier_options_additionalEventParamDescriptor_launchIdentifier_(
        "com.apple.finder", NSWorkspaceLaunchDefault, nil, nullptr));
}

} // namespace
} // namespace mac::test
