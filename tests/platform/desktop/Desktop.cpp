#include "tests/platform/desktop/Desktop.h"
#include "platform/desktop/browser/FileBrowserService.h"

namespace mac::test {

std::string fakeFileBrowser() { return FAKE_FILE_BROWSER; }

bool launchBrowser() {
    return waitUntil([] { return FileBrowserSession().launch().isDone() && isFileBrowserServiceOffered() == true; });
}

bool quitBrowser() {
    return waitUntil([] { return FileBrowserSession().quit().isDone(); });
}

} // namespace mac::test
