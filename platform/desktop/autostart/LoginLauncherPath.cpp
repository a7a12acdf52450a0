#include "platform/desktop/entries/StartedItem.h"
#include "platform/system/BytePath.h"
#include <cstdlib>
#include <memory>

namespace mac {

std::string loginLauncherPath() {
    std::unique_ptr<char, decltype(&::free)> const program(::realpath("/proc/self/exe", nullptr), &::free);
    bool const isOfBuild = program && BytePath(program.get()).isBelow(BUILD_FOLDER);
    return isOfBuild ? BUILT_LOGIN_LAUNCHER : INSTALLED_LOGIN_LAUNCHER;
}

} // namespace mac
