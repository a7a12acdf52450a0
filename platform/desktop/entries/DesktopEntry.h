#pragma once

#include "platform/desktop/entries/KeyFile.h"
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// A file NAME.desktop: how the desktop describes an application, and Xfce a preferred one. Text is UTF-8 as a rule, but
// not checked; paths are the file system's bytes. A value; for implementations, any thread.
class DesktopEntry {
public:
    using Words = std::vector<std::string>;

    // An entry without keys if the file cannot be read, or holds none.
    static DesktopEntry readFile(std::string const& path);
    // The path is only kept: the text is all that is looked at.
    static DesktopEntry read(std::string_view text, std::string path = {});

    std::string const& path() const { return m_path; }
    // Its keys' values: the text with escapes resolved, and the parts between semicolons.
    std::optional<std::string> text(std::string const& key) const;
    Words list(std::string const& key) const;
    std::string type() const { return text("Type").value_or(""); }

    // The name for people, not translated; nullopt without one, or an empty one.
    std::optional<std::string> name() const;
    // The name in the first of the languages ("de", "pt_BR") that it has one in, else the one that is not translated.
    std::optional<std::string> localizedName(Words const& languages) const;

    // The words of its command line with the codes for files (%f) as they stand; nullopt if there is no command line,
    // or it holds no word or a quote without end.
    std::optional<Words> command() const;
    // The words of an additional action, such as "quit"; its name is compared without case.
    std::optional<Words> commandOfAction(std::string_view name) const;
    bool needsTerminal() const { return isTrue("Terminal"); }

    // Whether it counts as deleted, so that it masks entries of its file name in later folders.
    bool isHidden() const { return isTrue("Hidden"); }
    // Whether it is an application that menus of this desktop show.
    bool isShownHere() const;
    // Whether it names this desktop as one of the few that it is shown in.
    bool isMadeForThisDesktop() const;
    // Whether its program is there, and the one that it names as a condition (TryExec).
    bool canBeStarted() const;

private:
    bool isTrue(std::string const& key) const;

    std::string m_path{};
    KeyFile m_file{};
};

// An entry in a folder of applications.
struct InstalledEntry {
    // "NAME.desktop"
    std::string fileName;
    std::string path;

    // "NAME"
    std::string_view identifier() const;
};

// The folders of desktop entries ("/usr/share/applications"), the user's and then the system's.
std::vector<std::string> applicationFolders();

// The entries of these folders, by folder and then by name; of those with one name the first alone.
std::vector<InstalledEntry> installedEntries();

// The path of the installed entry with the desktop file ID, in which a dash may stand for a folder's end
// ("kde-files.desktop" for "kde/files.desktop"); nullopt if no such entry can be read.
std::optional<std::string> pathOfEntryWithID(std::string identifier);

// The program's file with links resolved, given its path or its name in the search path; nullopt if there is none that
// may be executed.
std::optional<std::string> resolvedProgram(std::string const& word);

} // namespace mac
