#include "platform/desktop/browser/FileBrowserKinds.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include <algorithm>
#include <array>

namespace mac {

namespace {

constexpr QuitCall DolphinQuitCall{.namePrefix = "org.kde.dolphin-",
                                   .path = "/MainApplication",
                                   .interface = "org.qtproject.Qt.QCoreApplication",
                                   .method = "quit"};

constexpr std::array<FileBrowserKind, 9> Kinds{{
    {.program = "caja", .serviceProgram = "caja", .quitSwitch = "-q"},
    {.program = "dolphin",
     .serviceProgram = "dolphin",
     .quitCall = &DolphinQuitCall,
     .informationReply = InformationReply::NeverComes},
    {.program = "io.elementary.files", .serviceProgram = "io.elementary.files-daemon", .quitSwitch = "-q"},
    {.program = "krusader", .serviceProgram = ""},
    {.program = "nautilus", .serviceProgram = "nautilus", .quitSwitch = "-q"},
    {.program = "nemo", .serviceProgram = "nemo", .quitSwitch = "-q"},
    {.program = "pcmanfm", .serviceProgram = ""},
    {.program = "pcmanfm-qt", .serviceProgram = "pcmanfm-qt", .quitSwitch = "--quit"},
    {.program = "thunar", .serviceProgram = "thunar", .quitSwitch = "-q"},
}};

} // namespace

FileBrowserKind const* fileBrowserKindOf(std::string_view program) {
    auto const* const kind =
        std::ranges::find(Kinds, asciiLowercase(BytePath(program).leaf()), &FileBrowserKind::program);
    return kind == Kinds.end() ? nullptr : kind;
}

} // namespace mac
