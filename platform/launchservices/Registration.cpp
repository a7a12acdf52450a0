#include "platform/launchservices/Registration.h"
#include "platform/launchservices/DisplayNames.h"

namespace mac {

void registerLaunchServices() { useDisplayNamesInFileManager(); }

} // namespace mac
