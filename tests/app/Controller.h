#pragma once

#include "app/AppController.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/system/processes/ProcessList.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/RunUntil.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestRun.h"
#include <algorithm>
#include <string>

namespace framekeeper::test {

using mac::test::joined;
using mac::test::runUntil;
using mac::test::text;
using mac::test::TemporaryFolder;

inline AppController makeController() { return AppController::alloc().init(); }

inline NSString pathString(std::string const& bytes) { return NSString::stringWithFileSystemRepresentation_(bytes); }

// A copy of the companion below the folder; answers its path.
inline NSString makeCopy(TemporaryFolder const& folder, std::string const& relative,
                         std::string const& shortVersion = "2.1", std::string const& version = "210") {
    std::string const information = mac::test::informationFile("com.tidelark.mirrorframe", shortVersion, version);
    return pathString(folder.makeBundle(relative + "/Mirror Frame.app", information));
}

inline NSDictionary entry(NSString const& path, char const* key, id const& object) {
    return NSDictionary::dictionaryWithObjectsAndKeys_({path, "path", object, NSString::stringWithUTF8String_(key)});
}

inline NSMutableSet pathSet(std::initializer_list<id> paths) {
    return NSMutableSet::setWithArray_(NSArray::arrayWithObjects_(paths));
}

// The record of a path in the inventory, or nil.
inline NSDictionary recordOf(AppController const& controller, NSString const& path) {
    for (id const& record : controller.paths().allObjects()) {
        if (record.valueForKey_("path").isEqual_(path)) return as<NSDictionary>(record);
    }
    return nil;
}

inline bool flag(NSDictionary const& record, NSString const& key) {
    return as<NSNumber>(record.objectForKey_(key)).boolValue();
}

// For tests that expect an inventory without running copies other than their own. They are skipped only if the
// system refuses a process namespace and a copy of the companion happens to run.
class OnlyOwnCopies : public testing::Test {
protected:
    void SetUp() override {
        if (mac::test::hasOwnProcesses()) return;
        bool const doesCopyRun = std::ranges::any_of(mac::runningProcesses(), [](mac::RunningProcess const& process) {
            return mac::programOf(process).find("/Mirror Frame.app/") != std::string::npos;
        });
        if (doesCopyRun) GTEST_SKIP() << "a copy of the companion runs, and this system refuses a process namespace";
    }
};

} // namespace framekeeper::test
