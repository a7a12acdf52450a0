#pragma once

#include "platform/foundation/collections/NSArray.h"

namespace mac {

// Folders that a system keeps for a purpose, by purpose and by whom they serve. The values are the framework's own.
enum NSSearchPathDirectory : NSUInteger {
    // Support files of programs and people: sounds, fonts, settings.
    NSLibraryDirectory = 5,
};

enum NSSearchPathDomainMask : NSUInteger {
    // The user that the program runs for.
    NSUserDomainMask = 1,
    // All users of this computer.
    NSLocalDomainMask = 2,
    // The computers of a network.
    NSNetworkDomainMask = 4,
    // What came with the system.
    NSSystemDomainMask = 8,
    NSAllDomainsMask = 0x0FFFF,
};

// The paths of the folders of that purpose in the domains of the mask, each once: the user's first, then the local, the
// network's and the system's. They need not exist. A path in the home folder begins with a tilde unless it is to be
// expanded. Empty for a purpose that is not above. Any thread.
//
// Linux: the user's library is $XDG_DATA_HOME; the local ones are those of $XDG_DATA_DIRS that lie in /usr/local, the
// system's the others there, in their order; no domain is a network's.
NSArray NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory directory, NSUInteger domainMask, BOOL expandTilde);

} // namespace mac
