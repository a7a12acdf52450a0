#include "app/Registration.h"
#include "app/AppController.h"
#include "app/BOOLToColorTransformer.h"
#include "app/BOOLToStringTransformer.h"
#include "app/InTrashTransformer.h"
#include "platform/foundation/Method.h"

namespace framekeeper {

void registerController() {
    registerClasses<AppController, BOOLToColorTransformer, BOOLToStringTransformer, InTrashTransformer>();
}

} // namespace framekeeper
