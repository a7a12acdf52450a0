#include "tests/finder/Desktop.h"

namespace mac::test {

std::string fakeFileBrowser() { return FAKE_FILE_BROWSER; }

} // namespace mac::test
