#pragma once

namespace mac {

// What each room of platform has to say before a program begins: its classes become known by name, and it hands in the
// functions that rooms below call without knowing who answers. Every program calls the functions of the rooms that it
// links, once and before main, in the source that CMake writes for it (cmake/Registration.cmake). A second call changes
// nothing. A room defines its function in one of its sources.

// platform/foundation; prepares the main run loop, too.
void registerFoundation();

// platform/preferences
void registerPreferences();

// platform/events; has each new event loop open the endpoint for events of other programs.
void registerEvents();

// platform/launchservices
void registerLaunchServices();

// platform/icons/toolkit; in the installed library a module of its own.
void registerPictures();

// platform/spotlight
void registerSpotlight();

// The four libraries of platform/appkit, in the order of its folders views, arrangement, interface and workspace.
void registerViews();
void registerArrangement();
void registerAppKit();
void registerWorkspace();

// platform/applescript
void registerAppleScript();

} // namespace mac
