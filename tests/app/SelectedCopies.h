#pragma once

#include "app/AppControllerBody.h"
#include "tests/app/Complaints.h"
#include "tests/app/Controller.h"
#include "tests/platform/desktop/Desktop.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <vector>

namespace framekeeper::test {

inline std::string contentsOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A controller with copies on the disk, of which some are selected, on a desktop whose file browser writes down what it
// is asked for. What is logged and how often it beeps is counted. The desktop's folder has a trash of its own.
class SelectedCopies : public testing::Test {
protected:
    void SetUp() override {
        m_desktop.install(m_desktop.fake("serve"));
        m_desktop.installService(m_desktop.fake("serve"));
        m_controller.setValue_forKey_(m_selection, "pathsArrayController");
        m_controller.setIsOnHarddiskPaths_(NSMutableSet::set());
    }

    // A copy that the query has found.
    NSString findCopy(std::string const& place, char const* icon = "mirrorframe1") const {
        NSString const path = pathString(m_desktop.folder.makeBundle(place + "/Mirror Frame.app", plist(icon)));
        m_controller.isOnHarddiskPaths().addObject_(path);
        return path;
    }
    static std::string plist(std::string const& icon) {
        return "<plist><dict><key>CFBundleIdentifier</key><string>com.tidelark.mirrorframe</string>"
               "<key>CFBundleIconFile</key><string>" +
               icon + "</string></dict></plist>";
    }
    static std::string informationFileOf(NSString const& path) { return text(path) + "/Contents/Info.plist"; }
    static bool exists(NSString const& path) { return std::filesystem::exists(text(path)); }

    void select(std::vector<NSString> const& paths) const {
        m_controller.reSync();
        selectKnown(paths);
    }
    void selectKnown(std::vector<NSString> const& paths) const {
        NSMutableArray const records = NSMutableArray::array();
        for (NSString const& path : paths)
            records.addObject_(recordOf(m_controller, path));
        m_selection.setContent_(m_controller.paths());
        ASSERT_TRUE(m_selection.setSelectedObjects_(records) || paths.empty());
    }
    std::vector<std::string> onHarddisk() const {
        std::vector<std::string> paths;
        for (id const& path : m_controller.isOnHarddiskPaths().allObjects())
            paths.push_back(text(path));
        std::ranges::sort(paths);
        return paths;
    }
    // The one path on the disk that lies in the trash.
    NSString pathInTrash() const {
        for (id const& path : m_controller.isOnHarddiskPaths().allObjects()) {
            if (text(path).find("/Trash/files/") != std::string::npos) return as<NSString>(path);
        }
        return nil;
    }
    // The requests that the file browser received, without its start.
    std::vector<std::string> asked() const {
        std::vector<std::string> lines = m_desktop.lines();
        if (!lines.empty()) lines.erase(lines.begin());
        return lines;
    }
    std::string shown(NSString const& path) const {
        std::string uri = "ShowItems file://" + text(path);
        for (std::size_t space = uri.find(' ', 10); space != std::string::npos; space = uri.find(' ', space))
            uri.replace(space, 1, "%20");
        return uri;
    }
    std::string notice() const { return m_controller.notice() == nil ? "" : text(m_controller.notice()); }
    void expectFailure(std::string const& line) const {
        EXPECT_EQ(m_complaints.beeps, 1);
        EXPECT_EQ(m_complaints.lines, line.empty() ? std::vector<std::string>() : std::vector{line});
    }

    mac::test::Desktop const m_desktop{};
    AppController m_controller = makeController();
    NSArrayController m_selection = NSArrayController::alloc().init();
    Complaints m_complaints{};
};

} // namespace framekeeper::test
