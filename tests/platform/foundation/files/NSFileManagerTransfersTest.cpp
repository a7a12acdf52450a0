#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/ObjectBody.h"
#include "tests/support/DiskContents.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <cerrno>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

using Names = std::vector<std::string>;

// Answers as it is told, and keeps what it is told of.
class TransferHandler : public Handle<TransferHandler, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass() {
        return {.name = "TransferHandler",
                .superclass = classOf<NSObject>(),
                .makeBody = &makeEmptyBody<TransferHandler>,
                .methods = {method<&TransferHandler::proceed_>("fileManager:shouldProceedAfterError:"),
                            method<&TransferHandler::will_>("fileManager:willProcessPath:")}};
    }

    bool proceed_(NSFileManager const& manager, NSDictionary const& information) const;
    void will_(NSFileManager const& manager, NSString const& path) const;
};

class TransferHandler::Body : public ObjectBody {
public:
    bool m_proceeds{false};
    std::vector<NSDictionary> m_errors{};
    Names m_paths{};
    std::function<void(std::string const&)> m_before{};
};

bool TransferHandler::proceed_(NSFileManager const& manager, NSDictionary const& information) const {
    EXPECT_FALSE(manager == nil);
    bodyOf(*this)->m_errors.push_back(information);
    return bodyOf(*this)->m_proceeds;
}

void TransferHandler::will_(NSFileManager const& manager, NSString const& path) const {
    EXPECT_FALSE(manager == nil);
    bodyOf(*this)->m_paths.push_back(fileSystemBytes(path));
    if (bodyOf(*this)->m_before) bodyOf(*this)->m_before(fileSystemBytes(path));
}

class NSFileManagerTransfers : public testing::Test {
protected:
    NSFileManagerTransfers() {
        m_folder.makeFile("file", "contents");
        m_folder.makeFile("folder/inner/deep", "deep");
        m_folder.makeFile("folder/other", "other");
    }
    NSString at(std::string_view name) const { return path(m_folder.path(name)); }
    TransferHandler::Body& body() const { return *bodyOf(m_handler); }
    std::string errorText(char const* key) const {
        return body().m_errors.empty() ? "none" : fileSystemBytes(body().m_errors.back().objectForKey_(utf8(key)));
    }

    TemporaryFolder const m_folder{};
    TransferHandler const m_handler = TransferHandler::alloc();
    NSFileManager const m_manager = NSFileManager::defaultManager();
};

TEST_F(NSFileManagerTransfers, TellTheHandlerOfEachItemThatGoes) {
    EXPECT_TRUE(m_manager.removeFileAtPath_handler_(at("folder"), m_handler));
    std::ranges::sort(body().m_paths);
    EXPECT_EQ(body().m_paths, (Names{m_folder.path("folder"), m_folder.path("folder/inner"),
                                     m_folder.path("folder/inner/deep"), m_folder.path("folder/other")}));
    EXPECT_TRUE(body().m_errors.empty());
    EXPECT_TRUE(m_manager.removeFileAtPath_handler_(at("file"), nil));
    EXPECT_TRUE(namesIn(m_folder.path()).empty());
}

TEST_F(NSFileManagerTransfers, TellTheHandlerWhyARemovalFailed) {
    EXPECT_FALSE(m_manager.removeFileAtPath_handler_(at("file/below"), m_handler));
    EXPECT_EQ(errorText("Path"), m_folder.path("file/below"));
    EXPECT_EQ(errorText("Error"), std::string("\"file\": ") + std::strerror(ENOTDIR))
        << "in the language of the system";
    EXPECT_TRUE(body().m_errors.back().objectForKey_("ToPath") == nil);
    EXPECT_FALSE(m_manager.removeFileAtPath_handler_(at("none"), nil));
    EXPECT_EQ(textOf(m_folder.path("file")), "contents");
}

TEST_F(NSFileManagerTransfers, GoOnWhereTheHandlerSaysSo) {
    body().m_proceeds = true;
    EXPECT_TRUE(m_manager.removeFileAtPath_handler_(at("none"), m_handler));
    NSDictionary const lock =
        NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithBool_(YES), NSFileImmutable);
    NSDictionary const unlock =
        NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithBool_(NO), NSFileImmutable);
    ASSERT_TRUE(m_manager.changeFileAttributes_atPath_(lock, at("folder/inner/deep")));
    EXPECT_TRUE(m_manager.removeFileAtPath_handler_(at("folder"), m_handler));
    EXPECT_EQ(errorText("Path"), m_folder.path("folder/inner"));
    EXPECT_EQ(namesIn(m_folder.path("folder")), Names{"inner"});
    EXPECT_EQ(textOf(m_folder.path("folder/inner/deep")), "deep");
    ASSERT_TRUE(m_manager.changeFileAttributes_atPath_(unlock, at("folder/inner/deep")));
}

TEST_F(NSFileManagerTransfers, LeaveWhatTookThePlaceAfterItWasChosen) {
    for (bool const isLink : {false, true}) {
        body().m_before = [&](std::string const& path) {
            ASSERT_EQ(::rename(path.c_str(), m_folder.path(isLink ? "second" : "first").c_str()), 0);
            if (isLink)
                ASSERT_EQ(::symlink("folder", path.c_str()), 0);
            else
                m_folder.makeFile("file", "another");
        };
        EXPECT_FALSE(m_manager.removeFileAtPath_handler_(at("file"), m_handler));
        EXPECT_TRUE(isThere(m_folder.path("file")));
    }
    EXPECT_EQ(textOf(m_folder.path("first")), "contents");
    EXPECT_EQ(textOf(m_folder.path("second")), "another");
    EXPECT_EQ(textOf(m_folder.path("folder/other")), "other");
}

TEST_F(NSFileManagerTransfers, LeaveWhatTookThePlaceOfWhatWasToMove) {
    body().m_before = [&](std::string const& path) {
        ASSERT_EQ(::rename(path.c_str(), m_folder.path("first").c_str()), 0);
        m_folder.makeFile("file", "another");
    };
    EXPECT_FALSE(m_manager.movePath_toPath_handler_(at("file"), at("moved"), m_handler));
    EXPECT_EQ(textOf(m_folder.path("file")), "another");
    EXPECT_FALSE(isThere(m_folder.path("moved")));
    body().m_before = [](std::string const& path) { ASSERT_EQ(::unlink(path.c_str()), 0); };
    EXPECT_FALSE(m_manager.movePath_toPath_handler_(at("file"), at("moved"), m_handler));
    EXPECT_EQ(errorText("ToPath"), m_folder.path("moved"));
    EXPECT_FALSE(isThere(m_folder.path("moved")));
}

TEST_F(NSFileManagerTransfers, MoveAndCopyToAFreePath) {
    ASSERT_EQ(::symlink("nowhere", m_folder.path("lost").c_str()), 0);
    EXPECT_TRUE(m_manager.copyPath_toPath_handler_(at("folder"), at("copy"), m_handler));
    EXPECT_EQ(textOf(m_folder.path("copy/inner/deep")), "deep");
    EXPECT_EQ(body().m_paths, Names{m_folder.path("folder")});
    EXPECT_TRUE(m_manager.movePath_toPath_handler_(at("folder/"), at("moved/"), nil));
    EXPECT_EQ(textOf(m_folder.path("moved/other")), "other");
    EXPECT_TRUE(m_manager.movePath_toPath_handler_(at("lost/"), at("link"), nil));
    EXPECT_FALSE(m_manager.copyPath_toPath_handler_(at("file"), at("link"), m_handler));
    EXPECT_EQ(errorText("Path"), m_folder.path("file"));
    EXPECT_EQ(errorText("ToPath"), m_folder.path("link"));
    EXPECT_FALSE(m_manager.movePath_toPath_handler_(at("file"), at("copy"), m_handler));
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"copy", "file", "link", "moved"}));
}

TEST_F(NSFileManagerTransfers, NeedPathsThatNameItems) {
    for (NSString const& none : {NSString(), NSString(""), at("."), at(".."), at("folder/.")}) {
        EXPECT_FALSE(m_manager.removeFileAtPath_handler_(none, nil));
        EXPECT_FALSE(m_manager.movePath_toPath_handler_(none, at("new"), nil));
        EXPECT_FALSE(m_manager.movePath_toPath_handler_(at("file"), none, nil));
        EXPECT_FALSE(m_manager.copyPath_toPath_handler_(none, at("new"), nil));
        EXPECT_FALSE(m_manager.copyPath_toPath_handler_(at("file"), none, nil));
    }
    NSFileManager const none = nil;
    EXPECT_FALSE(none.removeFileAtPath_handler_(at("file"), nil));
    EXPECT_FALSE(none.movePath_toPath_handler_(at("file"), at("new"), nil));
    EXPECT_FALSE(none.copyPath_toPath_handler_(at("file"), at("new"), nil));
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"file", "folder"}));
    EXPECT_EQ(textOf(m_folder.path("folder/inner/deep")), "deep");
}

TEST_F(NSFileManagerTransfers, AnItemOfAnyNameGoes) {
    for (std::string const& name :
         {std::string(255, 'x'), std::string("\"q\" 'p' %@ %n \\"), std::string("a\nb"), std::string("\xff\x80")}) {
        m_folder.makeFile(name, "odd");
        EXPECT_TRUE(m_manager.movePath_toPath_handler_(at(name), at("folder/" + name), nil));
        EXPECT_TRUE(m_manager.copyPath_toPath_handler_(at("folder/" + name), at(name), nil));
        EXPECT_TRUE(m_manager.removeFileAtPath_handler_(at("folder/" + name), m_handler));
        EXPECT_EQ(body().m_paths.back(), m_folder.path("folder/" + name));
        EXPECT_TRUE(m_manager.removeFileAtPath_handler_(at(name), nil));
    }
    EXPECT_EQ(namesIn(m_folder.path()), (Names{"file", "folder"}));
}

} // namespace

} // namespace mac::test
