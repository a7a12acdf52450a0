#include "platform/appkit/workspace/NSWorkspace.h"
#include "platform/foundation/objects/Method.h"
#include "tests/platform/icons/ThemeHome.h"
#include "tests/support/Texts.h"

namespace mac::test {
namespace {

std::string formsOfIcon(NSImage const& image) {
    std::string text;
    for (id const& form : image.representations())
        text += std::to_string(as<NSImageRep>(form).pixelsWide()) + " ";
    return text;
}

NSColor cornerOf(NSImage const& image) {
    return as<NSBitmapImageRep>(image.representations().objectAtIndex_(0)).colorAtX_y_(0, 0);
}

class WorkspaceIcons : public ThemeHome {
protected:
    NSWorkspace const m_workspace{NSWorkspace::sharedWorkspace()};
};

TEST_F(WorkspaceIcons, OfFilesAreThoseOfTheTheme) {
    makeTheme("hicolor");
    makeIcon("hicolor/large/text-x-generic", 48, 0xFF0000FF);
    NSImage const icon = m_workspace.iconForFile_(path(m_folder.makeFile("a.txt", "text")));
    EXPECT_EQ(formsOfIcon(icon), "16 32 48 128 ");
    EXPECT_EQ(icon.size(), NSMakeSize(32, 32));
    EXPECT_EQ(cornerOf(icon).blueComponent(), 1);
    EXPECT_EQ(cornerOf(m_workspace.iconForFileType_("txt")).blueComponent(), 1);
    EXPECT_EQ(cornerOf(m_workspace.iconForFile_(path(m_folder.path("missing")))).blueComponent(), 1);
}

TEST_F(WorkspaceIcons, AreNewImagesEachTime) {
    NSImage const first = m_workspace.iconForFileType_("txt");
    first.removeRepresentation_(as<NSImageRep>(first.representations().lastObject()));
    EXPECT_EQ(formsOfIcon(m_workspace.iconForFileType_("txt")), "16 32 48 128 ");
}

TEST_F(WorkspaceIcons, AreNoneOfNil) {
    EXPECT_TRUE(m_workspace.iconForFile_(nil) == nil);
    EXPECT_TRUE(m_workspace.iconForFileType_(nil) == nil);
    EXPECT_TRUE(NSWorkspace(nil).iconForFile_("/") == nil);
    EXPECT_TRUE(NSWorkspace(nil).iconForFileType_("txt") == nil);
}

TEST_F(WorkspaceIcons, AreThereForTypeCodes) {
    EXPECT_TRUE(NSFileTypeForHFSTypeCode(OSType("TEXT")).isEqualToString_("'TEXT'"));
    EXPECT_EQ(formsOfIcon(m_workspace.iconForFileType_(NSFileTypeForHFSTypeCode(OSType("fldr")))), "16 32 48 128 ");
}

} // namespace
} // namespace mac::test
