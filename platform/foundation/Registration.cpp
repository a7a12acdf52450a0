#include "platform/foundation/Registration.h"
#include "platform/foundation/CFKeyedArchiverUID.h"
#include "platform/foundation/CFUUID.h"
#include "platform/foundation/EventLoop.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSArchiver.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSCharacterSet.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDate.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSDirectoryEnumerator.h"
#include "platform/foundation/NSEnumerator.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSIndexSet.h"
#include "platform/foundation/NSManagedObject.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSNotificationQueue.h"
#include "platform/foundation/NSNull.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSNumberFormatter.h"
#include "platform/foundation/NSPredicate.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/foundation/NSRunLoop.h"
#include "platform/foundation/NSScanner.h"
#include "platform/foundation/NSSet.h"
#include "platform/foundation/NSSortDescriptor.h"
#include "platform/foundation/NSTask.h"
#include "platform/foundation/NSThread.h"
#include "platform/foundation/NSTimer.h"
#include "platform/foundation/NSURL.h"
#include "platform/foundation/NSValue.h"
#include "platform/foundation/NSValueTransformer.h"

namespace mac {

void registerFoundation() {
    registerClasses<Class, NSObject, CFKeyedArchiverUIDRef, CFUUIDRef, NSArchiver, NSArray, NSBundle, NSCharacterSet,
                    NSData, NSDate, NSDictionary, NSDirectoryEnumerator, NSEnumerator, NSFileManager, NSIndexSet,
                    NSManagedObject, NSMutableArray, NSMutableCharacterSet, NSMutableData, NSMutableDictionary,
                    NSMutableIndexSet, NSMutableSet, NSMutableString, NSNotification, NSNotificationCenter,
                    NSNotificationQueue, NSNull, NSNumber, NSNumberFormatter, NSPredicate, NSPropertyListSerialization,
                    NSRunLoop, NSScanner, NSSet, NSSortDescriptor, NSString, NSTask, NSThread, NSTimer, NSUnarchiver,
                    NSURL, NSValue, NSValueTransformer>();
    prepareMainRunLoop();
}

} // namespace mac
