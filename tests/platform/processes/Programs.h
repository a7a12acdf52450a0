#pragma once

#include "platform/processes/Processes.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

// Programs for a test to start, and what is known of them when they run.

namespace mac::test {

// A copy of cat, which runs until its input ends.
inline std::string copyOfCat(TemporaryFolder const& folder, std::string const& relative) {
    std::ifstream const original("/bin/cat", std::ios::binary);
    std::ostringstream bytes;
    bytes << original.rdbuf();
    std::string const path = folder.makeFile(relative, bytes.str());
    EXPECT_EQ(::chmod(path.c_str(), 0755), 0);
    return path;
}

// A program that is being started has no environment for a moment.
inline void waitUntilCatRuns(ChildProcess const& cat) {
    cat.writeLine("it runs");
    EXPECT_EQ(cat.readLine(), "it runs");
}

inline std::string makeScript(TemporaryFolder const& folder, std::string const& relative, std::string const& script) {
    std::string path = folder.makeFile(relative, script);
    EXPECT_EQ(::chmod(path.c_str(), 0755), 0);
    return path;
}

inline ProcessSerialNumber numberOf(ChildProcess const& child) {
    ProcessSerialNumber psn;
    EXPECT_EQ(GetProcessForPID(child.pid(), &psn), noErr);
    return psn;
}

inline NSDictionary informationOf(ProcessSerialNumber psn) {
    return ProcessInformationCopyDictionary(&psn, kProcessDictionaryIncludeAllInformationMask);
}

inline std::string textAt(NSDictionary const& information, NSString const& key) {
    return as<NSString>(information.objectForKey_(key)).UTF8String();
}

inline std::vector<ProcessSerialNumber> everyProcess() {
    std::vector<ProcessSerialNumber> found;
    ProcessSerialNumber psn{0, kNoProcess};
    while (GetNextProcess(&psn) == noErr)
        found.push_back(psn);
    return found;
}

} // namespace mac::test
