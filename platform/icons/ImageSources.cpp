#include "platform/icons/ImageSources.h"
#include "platform/foundation/text/NSString.h"
#include "platform/icons/PictureToolkit.h"
#include "platform/launchservices/TypeTree.h"

namespace mac {

namespace {

constexpr char JPEG2000Type[] = "public.jpeg-2000";

NSArray readableTypes() {
    std::shared_ptr<TypeTree const> const types = knownTypes();
    NSMutableArray const identifiers = NSMutableArray::array();
    for (std::string const& mimeType : pictureToolkit().readableMIMETypes()) {
        NSString const identifier = NSString::stringWithUTF8String_(identifierOfMIMEType(*types, mimeType));
        if (!identifiers.containsObject_(identifier)) identifiers.addObject_(identifier);
    }
    // Read without the toolkit.
    if (!identifiers.containsObject_(JPEG2000Type)) identifiers.addObject_(JPEG2000Type);
    return NSArray::arrayWithArray_(identifiers);
}

} // namespace

NSArray CGImageSourceCopyTypeIdentifiers() {
    // The toolkit looks through its plug-ins for them, and finds the same ones each time. Never destroyed: images may
    // be asked about until the program's last instruction.
    static NSArray const& types = *std::make_unique<NSArray>(readableTypes()).release();
    return types;
}

} // namespace mac
