#include "coreutils/ArrayLookups.h"
#include "coreutils/Collections.h"
#include "coreutils/DeferredPerforming.h"
#include "coreutils/DisclaimerAndViews.h"
#include "coreutils/IconsAndImages.h"
#include "coreutils/Logging.h"
#include "coreutils/Strings.h"
#include "docs/examples/Example.h"
#include "platform/foundation/collections/NSDictionary.h"

using namespace mac;

namespace examples {

namespace {

// coreutils/Strings: sizes as people read them, and identifiers of their own.
void showStrings() {
    // "1.5 MB", with the decimal separator of the user's language.
    NSString const size = pxFormattedStringWithSize_(1572864);
    expect(size.hasPrefix_("1") && size.hasSuffix_("5 MB"));
    expect(pxUUID().length() == 36);
    expect(pxCountOf_("banana", "an") == 2);
}

// coreutils/Collections: sets in a set become one.
void showCollections() {
    NSArray const inner = NSArray::arrayWithObject_("a");
    NSArray const outer = NSArray::arrayWithObject_(inner);
    expect(pxFlattenedMutableArrayOfArrays(outer).isEqual_(inner));
}

// coreutils/ArrayLookups: the first object whose value is this one; nil if none is.
void showArrayLookups() {
    NSDictionary const copy = NSDictionary::dictionaryWithObject_forKey_("2.1", "version");
    NSArray const copies = NSArray::arrayWithObject_(copy);
    expect(pxObjectWithValue_forKeyPath_(copies, "2.1", "version").isEqual_(copy));
    expect(pxObjectWithValue_forKeyPath_(copies, "1.4", "version") == nil);
}

// coreutils/Logging: a line behind the others in a file; the log is made if it is missing.
void showLogging(NSString const& folder) {
    NSString const log = folder.stringByAppendingPathComponent_("example.log");
    pxLog_(log, "%@ copies", "7");
}

// coreutils/DeferredPerforming: several requests become one call, when the run loop is idle.
void showDeferredPerforming() {
    NSArray const receiver = NSArray::array();
    pxRegisterPerformDeferredSelector(receiver);
    pxPerformDeferredSelector_withObject_postWhenIdle_coalescing_(receiver, "count", nil, YES, YES);
    pxUnregisterPerformDeferredSelector(receiver);
}

// coreutils/IconsAndImages: an item's icon with sides of this length.
void showIconsAndImages(NSString const& folder) { expect(pxIconForFileWithDimension_(folder, 32) != nil); }

// coreutils/DisclaimerAndViews: a box without its title keeps its place.
void showDisclaimerAndViews(NSBox const& box) { pxSetTitleHidden_(box, YES); }

} // namespace

void showCoreUtils(NSString const& folder) {
    showStrings();
    showCollections();
    showArrayLookups();
    showLogging(folder);
    showDeferredPerforming();
    showIconsAndImages(folder);
    // Where there is no display there is no box, and a message to nil does nothing.
    showDisclaimerAndViews(nil);
}

} // namespace examples
