#include "pathutils/PXFileManagerHandler.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/ObjectBody.h"

namespace mac {

class PXFileManagerHandler::Body : public ObjectBody {
public:
    NSDictionary m_errorInfo{};
};

ClassDescription PXFileManagerHandler::describeClass() {
    return {
        .name = "PXFileManagerHandler",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<PXFileManagerHandler>,
        .methods =
            {
                method<&PXFileManagerHandler::fileManager_shouldProceedAfterError_>(
                    "fileManager:shouldProceedAfterError:"),
                method<&PXFileManagerHandler::fileManager_willProcessPath_>("fileManager:willProcessPath:"),
                method<&PXFileManagerHandler::errorInfo>("errorInfo"),
                method<&PXFileManagerHandler::setErrorInfo_>("setErrorInfo:"),
            },
    };
}

bool PXFileManagerHandler::fileManager_shouldProceedAfterError_(NSFileManager const& /*manager*/,
                                                                NSDictionary const& errorInfo) const {
    setErrorInfo_(errorInfo);
    return false;
}

void PXFileManagerHandler::fileManager_willProcessPath_(NSFileManager const& /*manager*/,
                                                        NSString const& /*path*/) const {}

NSDictionary PXFileManagerHandler::errorInfo() const {
    return *this == nil ? NSDictionary(nil) : bodyOf(*this)->m_errorInfo;
}

void PXFileManagerHandler::setErrorInfo_(NSDictionary const& errorInfo) const {
    if (*this != nil) bodyOf(*this)->m_errorInfo = errorInfo;
}

} // namespace mac
