#include "tests/app/ProgramInASession.h"

namespace framekeeper::test {

std::string programFile() { return PROGRAM; }

std::string sampleHomeScript() { return MAKE_SAMPLE_HOME; }

std::string windowScript() { return USE_WINDOW; }

} // namespace framekeeper::test
