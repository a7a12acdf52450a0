#pragma once

#include "platform/applescript/runtime/ObjectSpecifier.h"
#include <optional>
#include <string>
#include <string_view>

// The Finder's own folders, and conversions between paths and specifiers of the Finder. Paths are bytes, absolute and
// without symbolic links except at their end.

namespace mac::applescript {

// A name on the disk as the Finder shows it: a colon becomes a slash.
std::u16string shownName(std::string_view name);
// The name on the disk of a shown one; nullopt if no item can have that name.
std::optional<std::string> nameOnDisk(std::u16string_view shown);

std::string homePath();
std::string desktopPath();

// The class of a folder by its name on the disk: application, package or folder.
Code classOfFolderNamed(std::string_view name);

// `application "Finder"`.
Value finderItself();
// `folder "b" of folder "a" of startup disk of application "Finder"`.
Value folderSpecifier(std::string const& path);
// The specifier of an item of the class in the folder.
Value itemSpecifier(Code type, std::string_view name, Value const& folder);

// The path without symbolic links except at its end; nullopt if it leads to no item.
std::optional<std::string> directPath(std::string const& path);

// The path of the folder that holds the item; "/" for the root.
std::string parentOf(std::string const& path);

} // namespace mac::applescript
