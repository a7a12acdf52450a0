#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/predicates/NSPredicate.h"
#include "platform/system/walker/VolumeWalker.h"
#include <optional>

namespace mac {

// The walk for a predicate and scopes. It finds at least all that could match, so each find has to be tested with the
// predicate. nullopt if no scope names a place.
//
// The local computer is every local volume, or the folders named in the environment variable
// FRAMEKEEPER_LOCAL_COMPUTER, separated by colons: so the demo and the tests narrow it.
std::optional<VolumeWalkRequest> planSearch(NSPredicate const& predicate, NSArray const& scopes);

}
