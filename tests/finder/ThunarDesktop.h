#pragma once

#include "tests/finder/Desktop.h"
#include <memory>
#include <string>

namespace mac::test {

// A real file browser at a display and a bus of the test's own, which assistive technology can read. Skipped where it
// is not installed.
class ThunarDesktop : public testing::Test {
protected:
    ThunarDesktop();
    ~ThunarDesktop() override;
    void SetUp() override;
    void TearDown() override;

    // Whether a window of that title comes.
    static bool showsWindow(std::string const& title);
    // Whether an element comes whose role and name begin so ("status bar \"letter.txt\"").
    static bool showsElement(std::string const& beginning);

    TemporaryFolder const m_folder{};

private:
    struct Session;
    std::unique_ptr<Session> m_session{};
};

} // namespace mac::test
