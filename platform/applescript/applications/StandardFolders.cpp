#include "platform/applescript/applications/StandardFolders.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/system/BytePath.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <array>
#include <cstdlib>

namespace mac::applescript {

namespace {

struct FolderRow {
    Code code;
    // The user's: the variable of the desktop's folder, if it has one, and the folder in the home; then what lies
    // within.
    char const* variable;
    std::string_view inHome;
    std::string_view within{};
    // Absolute paths; empty if the domain has no such folder.
    std::string_view local{};
    std::string_view system{};
};

constexpr auto StandardFolders = std::to_array<FolderRow>({
    {folders::Home, "", ""},
    {folders::Desktop, "XDG_DESKTOP_DIR", "Desktop"},
    {folders::Documents, "XDG_DOCUMENTS_DIR", "Documents"},
    {folders::Downloads, "XDG_DOWNLOAD_DIR", "Downloads"},
    {folders::Movies, "XDG_VIDEOS_DIR", "Videos"},
    {folders::Music, "XDG_MUSIC_DIR", "Music"},
    {folders::Pictures, "XDG_PICTURES_DIR", "Pictures"},
    {folders::Public, "XDG_PUBLICSHARE_DIR", "Public"},
    {folders::Fonts, "XDG_DATA_HOME", ".local/share", "fonts", "/usr/local/share/fonts", "/usr/share/fonts"},
    {folders::ApplicationSupport, "XDG_DATA_HOME", ".local/share", "", "/usr/local/share", "/usr/share"},
    {folders::Library, "XDG_DATA_HOME", ".local/share", "", "/usr/local/share", "/usr/share"},
    {folders::Preferences, "XDG_CONFIG_HOME", ".config", "", "/etc/xdg", "/etc/xdg"},
    {folders::Applications, "XDG_DATA_HOME", ".local/share", "applications", "/usr/local/share/applications",
     "/usr/share/applications"},
    {folders::Utilities, "XDG_DATA_HOME", ".local/share", "applications", "/usr/local/share/applications",
     "/usr/share/applications"},
});

std::string temporaryFolder() {
    char const* const folder = std::getenv("TMPDIR");
    return folder && *folder == '/' ? std::string(folder) : std::string("/tmp");
}

// Folders of no domain alone.
std::optional<std::string> commonFolder(Code folder) {
    switch (folder) {
    case folders::StartupDisk:
        return "/";
    case folders::TemporaryItems:
        return temporaryFolder();
    case folders::Users:
        return "/home";
    default:
        return {};
    }
}

std::string inUserDomain(FolderRow const& row) {
    std::string const home = homePath();
    std::optional<std::string> const set = *row.variable != '\0' ? desktopFolder(row.variable) : std::nullopt;
    std::string const folder = set ? *set : row.inHome.empty() ? home : BytePath(home).joined(row.inHome);
    return row.within.empty() ? folder : BytePath(folder).joined(row.within);
}

} // namespace

std::optional<std::string> standardFolder(Code folder, FolderDomain domain) {
    if (std::optional<std::string> const common = commonFolder(folder)) return common;
    auto const* const row = std::ranges::find(StandardFolders, folder, &FolderRow::code);
    if (row == StandardFolders.end()) return {};
    if (domain == FolderDomain::User) return inUserDomain(*row);
    std::string_view const path = domain == FolderDomain::Local ? row->local : row->system;
    return path.empty() ? std::nullopt : std::optional(std::string(path));
}

} // namespace mac::applescript
