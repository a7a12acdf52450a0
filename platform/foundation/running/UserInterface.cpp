#include "platform/foundation/running/UserInterface.h"

namespace mac {

namespace {

UserInterface* currentInterface = nullptr;
void (*interfaceSource)() = nullptr;

} // namespace

UserInterface* userInterface() {
    if (!currentInterface && interfaceSource) interfaceSource();
    return currentInterface;
}

void setUserInterfaceSource(void (*newSource)()) { interfaceSource = newSource; }

void setUserInterface(UserInterface* newInterface) { currentInterface = newInterface; }

} // namespace mac
