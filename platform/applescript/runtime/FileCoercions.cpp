#include "platform/applescript/runtime/FileCoercions.h"
#include "platform/applescript/runtime/DescriptorKeywords.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptFileURLs.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/events/DescriptorCoercion.h"

namespace mac::applescript {

namespace {

using keywords::AliasType;

OSErr asText(AEDesc const& desc, DescType toType, AEDesc& result) {
    try {
        AEDesc const text = makeText(filePathText(valueOfDescriptor(desc)));
        return AECoerceDesc(&text, toType, &result);
    } catch (ScriptError const&) {
        return errAECoercionFail;
    }
}

OSErr asFile(AEDesc const& desc, DescType toType, AEDesc& result) {
    try {
        FileObject::Kind const kind = toType == AliasType ? FileObject::Kind::Alias : FileObject::Kind::PosixFile;
        Value const file = valueOfDescriptor(desc);
        result = descriptorOfValue(makeObject<FileObject>(ValueKind::File, kind, file.file().path));
        return noErr;
    } catch (ScriptError const&) {
        return errAECoercionFail;
    }
}

} // namespace

void installFileCoercions() {
    for (DescType const textType : {typeUnicodeText, typeText, typeUTF8Text}) {
        AEInstallCoercionHandler(AliasType, textType, asText);
        AEInstallCoercionHandler(typeFileURL, textType, asText);
    }
    AEInstallCoercionHandler(AliasType, typeFileURL, asFile);
    AEInstallCoercionHandler(typeFileURL, AliasType, asFile);
}

} // namespace mac::applescript
