#include "platform/Registration.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSEnumerator.h"
#include "platform/foundation/collections/NSIndexSet.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/files/NSDirectoryEnumerator.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/numbers/NSNumberFormatter.h"
#include "platform/foundation/objects/CFUUID.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/NSArchiver.h"
#include "platform/foundation/objects/NSManagedObject.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/objects/NSValue.h"
#include "platform/foundation/objects/NSValueTransformer.h"
#include "platform/foundation/predicates/NSPredicate.h"
#include "platform/foundation/propertylists/CFKeyedArchiverUID.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/foundation/running/NSNotificationQueue.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/running/NSTask.h"
#include "platform/foundation/running/NSThread.h"
#include "platform/foundation/running/NSTimer.h"
#include "platform/foundation/text/NSCharacterSet.h"
#include "platform/foundation/text/NSScanner.h"
#include "platform/foundation/text/VersionOrder.h"
#include "platform/foundation/urls/NSURL.h"

namespace mac {

void registerFoundation() {
    registerClasses<Class, NSObject, CFKeyedArchiverUIDRef, CFUUIDRef, NSArchiver, NSArray, NSBundle, NSCharacterSet,
                    NSData, NSDate, NSDictionary, NSDirectoryEnumerator, NSEnumerator, NSFileManager, NSIndexSet,
                    NSManagedObject, NSMutableArray, NSMutableCharacterSet, NSMutableData, NSMutableDictionary,
                    NSMutableIndexSet, NSMutableSet, NSMutableString, NSNotification, NSNotificationCenter,
                    NSNotificationQueue, NSNull, NSNumber, NSNumberFormatter, NSPredicate, NSPropertyListSerialization,
                    NSRunLoop, NSScanner, NSSet, NSSortDescriptor, NSString, NSTask, NSThread, NSTimer, NSUnarchiver,
                    NSURL, NSValue, NSValueTransformer>();
    registerVersionOrder();
    prepareMainRunLoop();
}

} // namespace mac
