#include "platform/foundation/UserInterface.h"
#include <utility>

namespace mac {

namespace {

UserInterface* currentInterface = nullptr;
void (*interfaceSource)() = nullptr;

} // namespace

UserInterface* userInterface() {
    if (!currentInterface && interfaceSource) std::exchange(interfaceSource, nullptr)();
    return currentInterface;
}

void setUserInterfaceSource(void (*newSource)()) { interfaceSource = newSource; }

void setUserInterface(UserInterface* newInterface) { currentInterface = newInterface; }

} // namespace mac
