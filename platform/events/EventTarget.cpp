#include "platform/events/EventTarget.h"
#include "platform/events/DescriptorCoercion.h"
#include "platform/events/DescriptorContents.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/processes/SerialNumbers.h"
#include <unistd.h>

namespace mac {

namespace {

constexpr FourCharCode FinderSignature{"MACS"};

std::optional<ProcessSerialNumber> processWithSignature(FourCharCode signature) {
    if (signature == FinderSignature) return processWith(kCFBundleIdentifierKey, "com.apple.finder");
    return processWith("FileCreator", NSString::stringWithCodeUnits(textOfCode(signature)));
}

std::optional<ProcessSerialNumber> processWithID(std::int32_t pid) {
    ProcessSerialNumber psn;
    return GetProcessForPID(pid, &psn) == noErr ? std::optional(psn) : std::nullopt;
}

std::optional<ProcessSerialNumber> serialNumberOfAddress(AEDesc const& address) {
    if (auto const psn = valueOf<ProcessSerialNumber>(address, typeProcessSerialNumber)) return psn;
    if (auto const pid = valueOf<std::int32_t>(address, typeKernelProcessID)) return processWithID(*pid);
    if (auto const code = valueOf<std::uint32_t>(address, typeApplSignature))
        return processWithSignature(FourCharCode(*code));
    auto const bytes = bytesOf(address, typeApplicationBundleID);
    if (!bytes || bytes->empty()) return std::nullopt;
    NSString const identifier =
        NSString::stringWithUTF8String_({reinterpret_cast<char const*>(bytes->data()), bytes->size()});
    return processWith(kCFBundleIdentifierKey, identifier);
}

} // namespace

std::optional<EventTarget> targetOfAddress(AEDesc const& address) {
    std::optional<ProcessSerialNumber> const psn = serialNumberOfAddress(address);
    std::optional<ProcessIdentity> const identity = psn ? identityOf(*psn) : std::nullopt;
    if (!identity || !runningProcess(*identity)) return std::nullopt;
    return EventTarget{*identity, identity->pid == ::getpid()};
}

} // namespace mac
