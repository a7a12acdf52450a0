#include "platform/events/AEDataModel.h"
#include "platform/events/DescriptorCoercion.h"

namespace mac {

OSErr AEDisposeDesc(AEDesc* desc) {
    if (!desc) return paramErr;
    *desc = {};
    return noErr;
}

OSErr AECoerceDesc(AEDesc const* desc, DescType toType, AEDesc* result) {
    if (!desc || !result) return paramErr;
    std::optional<AEDesc> value = coerced(*desc, toType);
    *result = value ? std::move(*value) : AEDesc{};
    return value ? noErr : errAECoercionFail;
}

} // namespace mac
