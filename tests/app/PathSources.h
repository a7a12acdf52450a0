#pragma once

#include "tests/app/Controller.h"
#include <gtest/gtest.h>
#include <ostream>

namespace framekeeper::test {

// A source of the inventory other than the disk.
struct PathSource {
    char const* name;
    char const* pathsKey;
    char const* objectKey;
    void (AppController::*sync)() const;
};

inline void PrintTo(PathSource const& source, std::ostream* stream) { *stream << source.name; }

// The fixture of tests that hold for each source: they stand in PathSourcesTest.cpp, and each source's test file
// instantiates them.
class PathSources : public OnlyOwnCopies, public testing::WithParamInterface<PathSource> {
protected:
    NSString m_pathsKey = NSString::stringWithUTF8String_(GetParam().pathsKey);
    AppController m_controller = makeController();
};

} // namespace framekeeper::test
