#include "platform/foundation/NSString.h"
#include "platform/launchservices/ImageSources.h"
#include "platform/launchservices/TypeTree.h"
#include <QImageReader>

namespace mac {

NSArray CGImageSourceCopyTypeIdentifiers() {
    std::shared_ptr<TypeTree const> const types = knownTypes();
    NSMutableArray const identifiers = NSMutableArray::array();
    for (QByteArray const& mimeType : QImageReader::supportedMimeTypes()) {
        NSString const identifier =
            NSString::stringWithUTF8String_(identifierOfMIMEType(*types, mimeType.toStdString()));
        if (!identifiers.containsObject_(identifier)) identifiers.addObject_(identifier);
    }
    return NSArray::arrayWithArray_(identifiers);
}

} // namespace mac
