#pragma once

#include "platform/applescript/applications/FinderItem.h"
#include "platform/applescript/runtime/ScriptValue.h"
#include "platform/foundation/objects/Object.h"

// The application that knows the system's processes, users and disks.

namespace mac::applescript {

namespace system_events {

// `application "System Events"`.
Value itself();

// SystemEventsProcesses.cpp: the processes in the order of their start, as elements of the application.
std::vector<ModelPointer> processes(Value const& application);
std::span<ClassRow const* const> processKinds();

// SystemEventsLoginItems.cpp: the programs that start at log-in, in the order of their list.
extern ClassRow const LoginItemRow;
std::vector<ModelPointer> loginItems();
bool isLoginItem(ModelObject const& object);
// Removes them from the list. REQUIRES: isLoginItem for each.
void removeLoginItems(std::vector<ModelPointer> const& objects);
// Adds the one of the command's properties; answers its specifier.
Value makeLoginItem(ApplicationCommand const& command, TextContext const& context);

// SystemEventsDisks.cpp
std::span<ClassRow const* const> diskItemKinds();
std::vector<ModelPointer> disks();
// By POSIX path, HFS path or the name of a disk; nullptr if there is no such item.
ModelPointer diskItemNamed(Code elementType, std::u16string const& name);
ModelPointer diskItemAt(std::string const& path);
// The path, in bytes, of what diskItemNamed finds by this name; nullopt for a name that no item can have.
std::optional<std::string> pathNamed(std::u16string const& name);
// nullptr for an object that lies on no disk.
std::shared_ptr<FinderItem> itemOf(ModelObject const& object);

// SystemEventsPropertyLists.cpp
std::span<ClassRow const* const> propertyListKinds();
// The property list in the file; nullptr if there is no such file. A file that holds none throws once it is asked.
ModelPointer propertyListFileNamed(std::u16string const& name);
// Makes an item of a list, or a file with an empty one; answers its specifier.
Value makePropertyListItem(ModelApplication& application, ApplicationCommand const& command,
                           TextContext const& context);
Value makePropertyListFile(ApplicationCommand const& command, TextContext const& context);

} // namespace system_events

// A property list as a value of scripts: a dictionary is a record whose keys its author made up, data are raw data.
// Numbers become integers as far as scripts have them, else reals.
Value valueOfPropertyList(id const& object);

// The inverse of valueOfPropertyList; a record's term becomes a key of the term's name. Throws -1700 for a value that
// no property list holds, and -2706 for a list that holds itself.
id propertyListOfValue(Value const& value);

} // namespace mac::applescript
