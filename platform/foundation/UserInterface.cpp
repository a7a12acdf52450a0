#include "platform/foundation/UserInterface.h"

namespace mac {

namespace {

UserInterface* currentInterface = nullptr;

} // namespace

UserInterface* userInterface() { return currentInterface; }

void setUserInterface(UserInterface* newInterface) { currentInterface = newInterface; }

} // namespace mac
