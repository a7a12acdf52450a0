#include "coreutils/Collections.h"
#include "coreutils/ArrayLookups.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/consumer/operations/Trial.h"

namespace consumer {

using namespace mac;

namespace {

NSDictionary named(char const* name) {
    return NSDictionary::dictionaryWithObject_forKey_(NSString::stringWithUTF8String_(name), "name");
}

void tryLookups() {
    Trial const trial("coreutils/ArrayLookups");
    NSArray const people = NSArray::arrayWithObjects_({named("Ann"), named("Bob")});
    NSDictionary const found = as<NSDictionary>(pxObjectWithValue_forKeyPath_(people, "Bob", "name"));
    trial.expect("pxObjectWithValue_forKeyPath_", isText(found.objectForKey_("name"), "Bob"));
    trial.expect("pxObjectAtIndex_", pxObjectAtIndex_(people, 2) == nil && pxObjectAtIndex_(people, 1) != nil);
}

void tryMoving(Trial const& trial) {
    NSMutableArray const letters = NSMutableArray::arrayWithObjects_({"a", "b", "c"});
    pxMoveObjectAtIndex_toIndex_(letters, 0, 3);
    trial.expect("pxMoveObjectAtIndex_toIndex_", areTexts(letters, {"b", "c", "a"}));
    pxMoveObjectsAtIndexes_toIndex_(letters, NSIndexSet::indexSetWithIndexesInRange_({0, 2}), 3);
    trial.expect("pxMoveObjectsAtIndexes_toIndex_", areTexts(letters, {"a", "b", "c"}));
}

} // namespace

void tryCollections() {
    tryLookups();
    Trial const trial("coreutils/Collections");
    NSArray const some = numbers({3, 1});
    bool const areIndexes = pxIndexSetWithNumbers(some).containsIndex_(3) &&
                            pxIndexSetWithNumbers(NSSet::setWithArray_(some)).count() == 2 &&
                            pxIndexSetWithNumbers(some.objectEnumerator()).firstIndex() == 1;
    trial.expect("pxIndexSetWithNumbers", areIndexes);
    trial.expect("pxArrayWithIndexes",
                 areTexts(pxStringValues(pxArrayWithIndexes(pxIndexSetWithNumbers(some))), {"1", "3"}));
    trial.expect("pxStringValues", areTexts(pxStringValues(some), {"3", "1"}));
    NSArray const nested = NSArray::arrayWithObjects_({some, NSArray::arrayWithObject_("x")});
    trial.expect("pxFlattenedMutableArrayOfArrays", pxFlattenedMutableArrayOfArrays(nested).count() == 3);
    NSArray const sets = NSArray::arrayWithObjects_({NSSet::setWithObject_("x"), NSSet::setWithObjects_({"x", "y"})});
    trial.expect("pxFlattenedMutableSetOfSets", pxFlattenedMutableSetOfSets(sets).count() == 2);
    NSMutableSet const united = NSMutableSet::set();
    pxUnionWithSet_(NSSet::setWithObject_("x"), united);
    trial.expect("pxUnionWithSet_", united.containsObject_("x"));
    NSArray const keys = NSArray::arrayWithObject_("name");
    NSDictionary const wide = NSDictionary::dictionaryWithObjectsAndKeys_({"Ann", "name", "red", "colour"});
    NSArray const trimmed = pxMutableArrayWithTrimmedObjectsForKeys_(NSArray::arrayWithObject_(wide), keys);
    trial.expect("pxMutableArrayWithTrimmedObjectsForKeys_",
                 as<NSDictionary>(trimmed.objectAtIndex_(0)).isEqualToDictionary_(named("Ann")));
    trial.expect("pxDictionaryWithDictionary_forKeys_",
                 pxDictionaryWithDictionary_forKeys_(wide, keys).isEqualToDictionary_(named("Ann")));
    trial.expect("pxUniqueCopyNameForName_",
                 isText(pxUniqueCopyNameForName_(NSArray::arrayWithObject_("a"), "a"), "a 1"));
    trial.expect("objectEnumerator", objectEnumerator(NSNull::null()).nextObject() == nil);
    tryMoving(trial);
}

} // namespace consumer
