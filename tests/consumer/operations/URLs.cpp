#include "pathutils/FinderMetadata.h"
#include "scripting/URLUtilities.h"
#include "tests/consumer/operations/Trial.h"

// What file URLs lead to, and the components of URLs.

namespace consumer {

using namespace mac;

void tryURLs(Places const& places) {
    Trial const trial("scripting/URLUtilities");
    NSURL const file = NSURL::fileURLWithPath_(places.file("urls/Title.txt", "text"));
    NSURL const volume = pxURLForVolume_(pxVolumeRefNumOfPath("/"));
    trial.expect("pxURLForVolume_", isText(volume.path(), "/"));
    trial.expect("KRVolumeURLGetPath", isText(KRVolumeURLGetPath(volume), "/"));
    std::uint32_t flags = 0;
    NSString name;
    trial.expect("pxLSFlags_displayName_", pxLSFlags_displayName_(file, &flags, &name) && isText(name, "Title.txt"));
    trial.expect("pxIsImageFile", !pxIsImageFile(file));
    trial.expect("pxIsAudioFile", !pxIsAudioFile(file));
    NSURL const online = NSURL::URLWithString_("http://idisk.mac.com/ann");
    trial.expect("KRURLSupportsCustomIcons", KRURLSupportsCustomIcons(online));
    trial.expect("KRURLHasInexactTime", !KRURLHasInexactTime(online));
    constexpr std::int32_t host = 8;
    trial.expect("pxComponent_", isText(pxComponent_(online, host), "idisk.mac.com"));
    trial.expect("pxDisplayComponent_", isText(pxDisplayComponent_(online, host), "idisk.mac.com"));
    pxDisplayComponents(online);
    trial.expect("pxDisplayComponents", true);
}

} // namespace consumer
