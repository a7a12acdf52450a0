#include "platform/foundation/FoundationClasses.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSEnumerator.h"
#include "platform/foundation/NSNull.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSSet.h"

namespace mac {

namespace {

template <class... Classes>
bool registerAll() {
    (classOf<Classes>(), ...);
    return true;
}

} // namespace

void registerFoundationClasses() {
    [[maybe_unused]] static bool const isDone =
        registerAll<NSObject, Class, NSArray, NSDictionary, NSEnumerator, NSMutableArray, NSMutableDictionary,
                    NSMutableSet, NSMutableString, NSNull, NSNumber, NSSet, NSString>();
}

} // namespace mac
