#include "app/AppController.h"
#include "app/Undo.h"
#include "platform/foundation/running/Beep.h"

namespace framekeeper {

void AppController::putBackAction_(id const&) const {
    NSString const path = onlySelectedPath();
    if (path == nil) return;
    Result<std::string, TrashProblem> const back = putBackItemAtPath(path.fileSystemRepresentation().value_or(""));
    if (!back.hasValue()) {
        NSBeep();
        return tell(*this, NSString::stringWithUTF8String_(back.problem().text.c_str()), Offer::Nothing);
    }
    isOnHarddiskPaths().removeObject_(path);
    isOnHarddiskPaths().addObject_(NSString::stringWithFileSystemRepresentation_(back.value()));
    forgetTrashing(*this, path);
    reSync();
    tell(*this, "Put back.", Offer::Nothing);
}

} // namespace framekeeper
