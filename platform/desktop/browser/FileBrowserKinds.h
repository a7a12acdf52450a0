#pragma once

#include <string_view>

namespace mac {

// The table of file browsers: what each does in its own way. Supporting another one is one row. For implementations;
// any thread.

// A D-Bus call that ends one process of a browser; the bus name ends in the process's ID.
struct QuitCall {
    std::string_view namePrefix;
    std::string_view path;
    std::string_view interface;
    std::string_view method;
};

enum class InformationReply { Comes, NeverComes };

struct FileBrowserKind {
    // The file name of the program that shows the windows.
    std::string_view program;
    // The file name of the program that offers the service org.freedesktop.FileManager1; empty for a browser that does
    // not, which is started with the folder to show.
    std::string_view serviceProgram;
    // The program's switch that makes the running browser quit; empty without one.
    std::string_view quitSwitch{};
    // The call that makes one process quit; null without one. With neither, processes get SIGTERM.
    QuitCall const* quitCall{nullptr};
    // Whether the service replies to ShowItemProperties.
    InformationReply informationReply{InformationReply::Comes};
};

// The row of the program, given its path; compared by file name without case. null for a browser without a row: it is
// started by its desktop entry, asked by the service if it is installed as that, and ended by SIGTERM.
FileBrowserKind const* fileBrowserKindOf(std::string_view program);

} // namespace mac
