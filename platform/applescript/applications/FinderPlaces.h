#pragma once

#include "platform/applescript/ObjectSpecifier.h"
#include <optional>
#include <string>
#include <string_view>

// Where the Finder's own folders lie, and how paths and specifiers of the Finder become each other. Paths are bytes,
// absolute and without links but at the end.

namespace mac::applescript {

// As the file system's bytes hold it, and as the Finder shows it: what is a colon in one is a slash in the other.
std::u16string shownName(std::string_view name);
// Nothing for what no item can have as its name.
std::optional<std::string> nameOnDisk(std::u16string_view shown);

std::string homePath();
std::string desktopPath();

// An application, a package or a folder, by the name on the disk alone.
Code classOfFolderNamed(std::string_view name);

// `application "Finder"`.
Value finderItself();
// `folder "b" of folder "a" of startup disk of application "Finder"`.
Value folderSpecifier(std::string const& path);
// Of an item of the class in the folder.
Value itemSpecifier(Code type, std::string_view name, Value const& folder);

// The path without links but at the end; nothing where it leads to nothing.
std::optional<std::string> directPath(std::string const& path);

std::string parentOf(std::string const& path);
std::string lastName(std::string const& path);
std::string joined(std::string const& folder, std::string const& name);

} // namespace mac::applescript
