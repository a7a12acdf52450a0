#include "coreutils/DisclaimerAndViews.h"
#include "coreutils/Registration.h"
#include "pathutils/FinderMetadata.h"
#include "pathutils/PathRelations.h"
#include "platform/appkit/views/NSAlert.h"
#include "platform/appkit/views/NSApplication.h"
#include "platform/files/FileOperations.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/files/NSSearchPath.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/launchservices/ItemInformation.h"
#include "platform/preferences/NSUserDefaults.h"
#include "scripting/FileReferences.h"
#include <vector>

namespace mac {

namespace {

constexpr char AcceptedVersionKey[] = "Disclaimer Shown for Version";
constexpr NSInteger AcceptTag = 0;
constexpr NSInteger DoNotAcceptTag = 1;

// In points.
constexpr float TitleHeight = 13;

constexpr NSTimeInterval BusyRetryDelay = 1;

// The number that a version is or begins with; 0 without one.
int integerValueOf(id const& version) {
    return version.respondsToSelector_("intValue") ? as<NSNumber>(version.performSelector_("intValue")).intValue() : 0;
}

NSInteger runDisclaimerAlert() {
    NSAlert const alert = NSAlert::alloc().init();
    alert.addButtonWithTitle_("Accept").setTag_(AcceptTag);
    alert.addButtonWithTitle_("Don't Accept").setTag_(DoNotAcceptTag);
    for (id const& button : alert.buttons())
        as<NSButton>(button).setKeyEquivalent_("");
    alert.setMessageText_("Disclaimer");
    alert.setInformativeText_(
        "This software is provided on an \"AS IS\" basis. You accept all risks which may arise from downloading or "
        "installing or using this software. The author of this software makes no warranties and is not responsible and "
        "shall not be held liable for any damage, perceived or real, resulting from downloading or using this "
        "software.");
    alert.setAlertStyle_(NSWarningAlertStyle);
    return alert.runModal();
}

// Gives a view's mask what keeps its size and its distance from the lower edge.
NSUInteger maskFixedToBottom(NSUInteger mask) {
    return (mask & ~(NSViewMinYMargin | NSViewHeightSizable)) | NSViewMaxYMargin;
}

bool isVisibleSound(NSString const& path) {
    std::uint32_t flags = 0;
    if (!pxLSFlagsOfPath_(path, &flags) || (flags & kLSItemInfoIsInvisible) != 0) return false;
    return pxIsAudioFile(path);
}

void addSoundNames(NSString const& folder, NSMutableSet const& names) {
    if (!KRCPathExists(folder)) return;
    // Enumerated one by one, since the folder may hold any number of items.
    NSDirectoryEnumerator const items = NSFileManager::defaultManager().enumeratorAtPath_(folder);
    for (id item = items.nextObject(); item != nil; item = items.nextObject()) {
        NSString const subpath = as<NSString>(item);
        if (isVisibleSound(folder.stringByAppendingPathComponent_(subpath)))
            names.addObject_(subpath.stringByDeletingPathExtension());
    }
}

} // namespace

bool pxRunDisclaimer(id receiver) {
    if (receiver == nil) return false;
    id const version = NSBundle::mainBundle().objectForInfoDictionaryKey_(kCFBundleVersionKey);
    NSUserDefaults const defaults = NSUserDefaults::standardUserDefaults();
    id const accepted = defaults.objectForKey_(AcceptedVersionKey);
    if (accepted != nil && integerValueOf(version) <= integerValueOf(accepted)) return false;
    if (runDisclaimerAlert() == AcceptTag)
        defaults.setObject_forKey_(version, AcceptedVersionKey);
    else
        NSApplication::sharedApplication().terminate_(nil);
    return true;
}

void pxSetTitleHidden_(NSBox receiver, BOOL hide) {
    if (receiver == nil) return;
    float const growth = hide ? -TitleHeight : TitleHeight;
    NSArray const subviews = receiver.subviews();
    std::vector<NSUInteger> masks;
    for (id const& object : subviews) {
        NSView const subview = as<NSView>(object);
        masks.push_back(subview.autoresizingMask());
        subview.setAutoresizingMask_(maskFixedToBottom(masks.back()));
    }
    NSRect frame = receiver.frame();
    frame.origin.y -= growth;
    frame.size.height += growth;
    if (hide) {
        receiver.setTitlePosition_(NSNoTitle);
        receiver.setFrame_(frame);
    } else {
        receiver.setFrame_(frame);
        receiver.setTitlePosition_(NSAtTop);
    }
    // The first one's mask for all of them, by design.
    for (id const& subview : subviews)
        as<NSView>(subview).setAutoresizingMask_(masks.front());
}

void pxSetPrimitiveValueFrom_forKey_(NSManagedObject receiver, id source, NSString key) {
    receiver.setPrimitiveValue_forKey_(source.valueForKey_(key), key);
}

void pxSetPrimitiveValuesFrom_forKeys_(NSManagedObject receiver, id source, NSArray keys) {
    // A getter of the source may change the keys.
    for (id const& key : NSArray::arrayWithArray_(keys))
        pxSetPrimitiveValueFrom_forKey_(receiver, source, as<NSString>(key));
}

void pxSetPrimitiveValuesFrom_(NSManagedObject receiver, NSDictionary source) {
    pxSetPrimitiveValuesFrom_forKeys_(receiver, source, source.allKeys());
}

void pxSetValueFromPrimitive_forKey_(id receiver, NSManagedObject source, NSString key) {
    receiver.setValue_forKey_(source.primitiveValueForKey_(key), key);
}

void pxSetValuesFromPrimitive_forKeys_(id receiver, NSManagedObject source, NSArray keys) {
    // A setter or an observer of the receiver may change the keys.
    for (id const& key : NSArray::arrayWithArray_(keys))
        pxSetValueFromPrimitive_forKey_(receiver, source, as<NSString>(key));
}

NSArray pxArrayWithInstalledSoundNames() {
    NSMutableSet const names = NSMutableSet::set();
    for (id const& library : NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSAllDomainsMask, NO))
        for (char const* const name : {"Sounds", "sounds"}) {
            NSString const folder =
                as<NSString>(library).stringByAppendingPathComponent_(NSString::stringWithUTF8String_(name));
            addSoundNames(folder.stringByStandardizingPath(), names);
        }
    return names.allObjects().sortedArrayUsingSelector_("caseInsensitiveCompare:");
}

void pxRemovePathAfterNotBusy_(id receiver, NSString path) {
    // A reference that stays would keep a volume busy that is mounted on the item.
    PassingReferences const passing;
    FSRef ref{};
    if (receiver == nil || !KRPathGetFSRef_traverseLink_(path, &ref, NO)) return;
    if (FSDeleteObject(&ref) != fBsyErr) return;
    performSelector_withObject_afterDelay_(receiver, "pxRemovePathAfterNotBusy:", path, BusyRetryDelay);
}

void registerDisclaimerAndViews() {
    addCategory<NSObject>({
        method<&pxRunDisclaimer>("pxRunDisclaimer"),
        method<&pxSetValueFromPrimitive_forKey_>("pxSetValueFromPrimitive:forKey:"),
        method<&pxSetValuesFromPrimitive_forKeys_>("pxSetValuesFromPrimitive:forKeys:"),
        method<&pxRemovePathAfterNotBusy_>("pxRemovePathAfterNotBusy:"),
    });
    addCategory<NSBox>({method<&pxSetTitleHidden_>("pxSetTitleHidden:")});
    addCategory<NSManagedObject>({
        method<&pxSetPrimitiveValueFrom_forKey_>("pxSetPrimitiveValueFrom:forKey:"),
        method<&pxSetPrimitiveValuesFrom_forKeys_>("pxSetPrimitiveValuesFrom:forKeys:"),
        method<&pxSetPrimitiveValuesFrom_>("pxSetPrimitiveValuesFrom:"),
    });
    addCategory<NSArray>({}, {classMethod<&pxArrayWithInstalledSoundNames>("pxArrayWithInstalledSoundNames")});
}

} // namespace mac
