#pragma once

#include "platform/desktop/FileBrowser.h"
#include "platform/system/processes/DetachedProcess.h"
#include <optional>
#include <string>
#include <vector>

// How the file browser is asked to quit, and how it was started, so that it can be started again as it was. For
// implementations; any thread.

namespace mac {

struct FileBrowserStart {
    // The file that was executed, which is the interpreter of a browser that is a script.
    std::string executable;
    std::vector<std::string> words;
    // Where it was started; empty where that cannot be told.
    std::string folder;
};

// Remembers how the process, one of the browser's, was started. False when it does not run any more.
bool rememberStart(FileBrowser const& browser, ProcessIdentity const& process);
// Of the same browser; nothing where none was remembered.
std::optional<FileBrowserStart> rememberedStart(FileBrowser const& browser);
void forgetFileBrowserStart();

// Runs the command that its desktop entry or its kind has to make it quit, and does not wait. The process that does it;
// fails with ENOENT if there is no such command.
Result<std::int32_t> runQuitCommand(FileBrowser const& browser);
// Whether the process is the last of those, which mostly runs the browser's own program.
bool isQuitCommand(ProcessIdentity const& process);

// Asks the process to quit as a user would and does not wait: the file browser by its own command, after its start was
// remembered, and any other process as askToEnd does. False when it has ended already, or may not be asked.
bool askToQuit(ProcessIdentity const& process);

} // namespace mac
