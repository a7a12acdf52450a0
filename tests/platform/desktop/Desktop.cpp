#include "tests/platform/desktop/Desktop.h"

namespace mac::test {

std::string fakeFileBrowser() { return FAKE_FILE_BROWSER; }

} // namespace mac::test
