#pragma once

#include "platform/appkit/views/NSBox.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/objects/NSManagedObject.h"

namespace mac {

// Interface and application operations of no other topic: the disclaimer that is shown once for each version, boxes
// without their title, managed objects, sounds, files that are busy. Nothing here reports an error. Main thread.

// Shows the disclaimer if the main bundle's "CFBundleVersion" has a greater integer value than the version that was
// accepted last, or if none was; then answers YES. Call it before the first window opens. "Accept" stores the bundle's
// version in the user defaults under "Disclaimer Shown for Version"; any other end of the dialog asks the application
// to terminate. No key answers the dialog but Space and the button that has the keyboard. NO for nil, and nothing is
// shown.
//
// Linux: where there is no display, which a line in the log says, the disclaimer counts as not accepted.
bool pxRunDisclaimer(id receiver);

// Makes the box 13 points lower and takes its title away, or 13 points higher with its title at the top. The upper edge
// stays where it is, and so do the subviews' sizes and distances from the lower edge. Afterwards all subviews have the
// autoresizing mask of the first one, by design. Whether the title is hidden already is not asked. Nothing for nil.
void pxSetTitleHidden_(NSBox receiver, BOOL hide);

// Sets the source's value for the key as the primitive value of the receiver: no observer is told. Nil does nothing; a
// nil source has nil values.
void pxSetPrimitiveValueFrom_forKey_(NSManagedObject receiver, id source, NSString key);
// Does so for each of the keys, in their order.
void pxSetPrimitiveValuesFrom_forKeys_(NSManagedObject receiver, id source, NSArray keys);
// Does so for each key of the source.
void pxSetPrimitiveValuesFrom_(NSManagedObject receiver, NSDictionary source);
// Sets the source's primitive value for the key as the receiver's value by key-value coding. Nil does nothing.
void pxSetValueFromPrimitive_forKey_(id receiver, NSManagedObject source, NSString key);
// Does so for each of the keys, in their order.
void pxSetValuesFromPrimitive_forKeys_(id receiver, NSManagedObject source, NSArray keys);

// The names of the audio files in the "Sounds" folders of all library folders, and in folders there: paths from the
// Sounds folder without extensions, each once, in case-insensitive order. Invisible files, and files whose flags cannot
// be read, are left out; symbolic links to folders are not followed. The time grows with the number of items.
//
// Linux: sound themes count; they lie in folders called "sounds".
NSArray pxArrayWithInstalledSoundNames();

// Deletes the item at the path, a symbolic link itself, for good. While the item is busy (fBsyErr) it is tried again
// each second, as long as the run loop runs; the receiver is kept meanwhile. Nothing for a nil receiver, for a path
// that leads nowhere, and after any other error.
void pxRemovePathAfterNotBusy_(id receiver, NSString path);

} // namespace mac
