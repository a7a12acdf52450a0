#include "platform/preferences/NativeStores.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/foundation/text/SystemErrorTexts.h"
#include "platform/preferences/LoginItemsStore.h"
#include "platform/preferences/ToolbarItemsStore.h"
#include <array>
#include <cerrno>

namespace mac {

namespace {

constexpr auto Stores = std::to_array<NativeStore>({
    {.domain = "com.apple.finder",
     .key = "FXToolbarItems",
     .read = ToolbarItemsStore::readItems,
     .write = ToolbarItemsStore::writeItems},
    {.domain = "loginwindow",
     .key = "AutoLaunchedApplicationDictionary",
     .read = readLoginItems,
     .write = writeLoginItems},
});

std::string reasonOf(SystemError const& error) {
    // The system's words for it speak of messages.
    if (!error.is(EBADMSG)) return localizedSystemError(error.code).UTF8String();
    return NSLocalizedString("The file is damaged", "A list or settings that cannot be read").UTF8String();
}

} // namespace

std::span<NativeStore const> nativeStores() { return Stores; }

Failure failureForPeople(SystemError const& error) {
    std::string const reason = reasonOf(error);
    return {error.item.empty() ? reason : error.item + ": " + reason};
}

} // namespace mac
