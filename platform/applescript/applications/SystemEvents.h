#pragma once

#include "platform/applescript/applications/FinderItem.h"

// The application that knows the system's processes, users and disks.

namespace mac::applescript {

Terminology const& systemEventsTerms();

namespace system_events {

// `application "System Events"`.
Value itself();

// SystemEventsProcesses.cpp: in the order of their start.
std::vector<ModelPointer> processes(Code elementType);

// SystemEventsLoginItems.cpp: the programs that start at log-in, in the order of their list.
std::vector<ModelPointer> loginItems();
bool isLoginItem(ModelObject const& object);
// Removes them from the list. REQUIRES: isLoginItem for each.
void removeLoginItems(std::vector<ModelPointer> const& objects);
// Adds the one of the command's properties; answers its specifier.
Value makeLoginItem(ApplicationCommand const& command, TextContext const& context);

// SystemEventsDisks.cpp
std::vector<ModelPointer> disks();
// By POSIX path, HFS path or the name of a disk; null where there is nothing.
ModelPointer diskItemNamed(Code elementType, std::u16string const& name);
ModelPointer diskItemAt(std::string const& path);
// Null for what lies on no disk.
std::shared_ptr<FinderItem> itemOf(ModelObject const& object);

} // namespace system_events

} // namespace mac::applescript
