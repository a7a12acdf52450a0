#pragma once

#include "platform/desktop/DesktopProblem.h"
#include "platform/desktop/browser/FileBrowserKinds.h"
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// File browsers on the session's bus. For implementations; main thread.

namespace mac {

inline constexpr std::string_view FileBrowserServiceName = "org.freedesktop.FileManager1";

// Whether a process offers the service now; nullopt without a bus.
std::optional<bool> isFileBrowserServiceOffered();

// Waits until a process offers the service. If the process with the ID, which was started to do so, ends meanwhile, it
// waits at most 2 seconds more: the program may have started another and ended.
DesktopOutcome waitForFileBrowserService(std::int32_t pid, std::chrono::milliseconds longest);

enum class FileBrowserRequest { ShowItems, ShowFolders, ShowItemProperties };

// Asks the process that offers the service, whichever browser it is, and waits for its reply unless it is known never
// to reply. nullopt if there is none, or it has left the bus without having said that it did it. Never starts a
// process: the bus might start another browser than the user's.
std::optional<DesktopOutcome> callFileBrowserService(FileBrowserRequest request, std::vector<std::string> const& paths,
                                                     std::chrono::milliseconds longest);

// What to answer for a browser that can be reached by the bus alone, without one.
DesktopProblem noSessionBus();

// Tells the process to quit by its browser's own call. False if it has no such name on the bus, or refuses.
bool callToQuit(QuitCall const& call, std::int32_t pid);

} // namespace mac
