#include "coreutils/DisclaimerAndViews.h"
#include "platform/foundation/files/NSFileManager.h"
#include "tests/consumer/operations/Trial.h"

// Interface and application operations. The program has no display.

namespace consumer {

using namespace mac;

void tryInterface(Places const& places) {
    Trial const trial("coreutils/DisclaimerAndViews");
    NSBox const box = NSBox::alloc().initWithFrame_(NSMakeRect(10, 100, 300, 200));
    pxSetTitleHidden_(box, YES);
    trial.expect("pxSetTitleHidden_", box.frame().size.height == 187);
    places.file("data/sounds/Glass.wav", "RIFF");
    places.file("home/Library/Sounds/Own.aiff", "FORM");
    trial.expect("pxArrayWithInstalledSoundNames", pxArrayWithInstalledSoundNames() != nil);
    NSString const file = places.file("busy", "");
    pxRemovePathAfterNotBusy_(box, file);
    trial.expect("pxRemovePathAfterNotBusy_", !NSFileManager::defaultManager().fileExistsAtPath_(file));
    // The program is in no bundle, whose version could be newer than the one accepted last.
    trial.expect("pxRunDisclaimer", pxRunDisclaimer(box) && !pxRunDisclaimer(nil));
}

} // namespace consumer
