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

// SystemEventsDisks.cpp
std::vector<ModelPointer> disks();
// By POSIX path, HFS path or the name of a disk; null where there is nothing.
ModelPointer diskItemNamed(Code elementType, std::u16string const& name);
ModelPointer diskItemAt(std::string const& path);
// Null for what lies on no disk.
std::shared_ptr<FinderItem> itemOf(ModelObject const& object);

} // namespace system_events

} // namespace mac::applescript
