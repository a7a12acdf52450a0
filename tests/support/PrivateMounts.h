#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mac::test {

// The fixture of tests that mount: gives this process a private mount namespace, which ends with it. If that is not
// allowed, the test is skipped with the reason.
class PrivateMounts : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override; // unmounts, so folders for mount points are members of the test's class

    void mountMemory(std::string const& point, char const* options = nullptr);
    // A file system in memory that knows no extended attributes.
    void mountWithoutAttributes(std::string const& point);
    // Two folders as one: what changes goes to the folder "above" in the other, which needs one called "work", too.
    // Skips the test, with the reason, where the system has no such mounts; then the caller returns.
    void mountLayers(std::string const& below, std::string const& changes, std::string const& point);
    void makeReadOnly(std::string const& point);
    void bind(std::string const& folder, std::string const& point);
    // Makes an ext4 file system in a file and mounts it by a loop device. Skips the test, with the reason, if there are
    // no loop devices; the caller then returns.
    void mountImage(std::string const& image, std::string const& point, std::vector<std::string> const& options = {});
    // Makes and mounts a file system of another type, "xfs" or "btrfs", in the same way as mountImage.
    void mountImageOfType(std::string const& type, std::string const& image, std::string const& point);
    // Shows a folder at another place, by a server of its own (FUSE) that ends with the mount. Skips the test, with the
    // reason, where bindfs is missing or /dev/fuse is missing or closed; then the caller returns. Throws if it fails.
    void mountServed(std::string const& folder, std::string const& point);
    void unmount(std::string const& point);

private:
    void mountNewImage(std::vector<std::string> const& make, std::string const& image, std::string const& point);
    void add(std::string const& source, std::string const& point, char const* type, unsigned long flags,
             char const* options = nullptr);

    std::vector<std::string> m_points;
};

} // namespace mac::test
