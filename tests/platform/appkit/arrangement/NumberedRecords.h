#pragma once

#include "platform/appkit/arrangement/ArrayControllerBody.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "tests/platform/appkit/interface/FakeController.h"

// Records in the order of their numbers, more than an array controller takes in one step.

namespace mac::test {

// Several steps.
inline constexpr int ManyRows = static_cast<int>(2 * NSArrayController::Body::RowsInStep + 7);

inline NSArray byNumber(BOOL ascending) {
    return NSArray::arrayWithObject_(NSSortDescriptor::sortDescriptorWithKey_ascending_("path", ascending));
}

// Paths of one length, so that their order as text is that of their numbers; odd ones have version 1, the others 0.
inline NSMutableDictionary numberedRecord(int number) {
    return makeRecord(NSString::stringWithFormat_("/copies/%d", 100'000 + number),
                      NSString::stringWithFormat_("%d", number % 2));
}

inline NSMutableSet numberedRecords(int count) {
    NSMutableSet const records = NSMutableSet::set();
    for (int number = 0; number < count; ++number)
        records.addObject_(numberedRecord(number));
    return records;
}

} // namespace mac::test
