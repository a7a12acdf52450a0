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

// What holds for each of these sources; PathSourcesTest.cpp has the tests, the test file of a source its instance.
class PathSources : public OnlyOwnCopies, public testing::WithParamInterface<PathSource> {
protected:
    NSString m_pathsKey = NSString::stringWithUTF8String_(GetParam().pathsKey);
    AppController m_controller = makeController();
};

} // namespace framekeeper::test
