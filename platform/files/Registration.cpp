#include "platform/files/Registration.h"
#include "platform/files/CreationDates.h"

namespace mac {

void registerFiles() { useCreationDatesInFileManager(); }

} // namespace mac
