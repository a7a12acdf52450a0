#include "tests/support/PrivateMounts.h"
#include "platform/system/FileDescriptor.h"
#include "tests/support/Commands.h"
#include "tests/support/ServedFolder.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <stdexcept>
#include <sys/mount.h>
#include <system_error>
#include <unistd.h>

namespace mac::test {

namespace {

// Why this process cannot have mounts of its own; empty if it has them. Asked once: the mounts stay the process's own.
std::string const& whyNoPrivateMounts() {
    static std::string const reason = [] {
        std::string const denied = "mounting is not allowed here: ";
        if (::unshare(CLONE_NEWNS) != 0) return denied + std::strerror(errno);
        if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return denied + std::strerror(errno);
        return std::string();
    }();
    return reason;
}

} // namespace

void PrivateMounts::SetUp() {
    if (!whyNoPrivateMounts().empty()) GTEST_SKIP() << whyNoPrivateMounts();
}

void PrivateMounts::TearDown() {
    for (; !m_points.empty(); m_points.pop_back())
        ::umount2(m_points.back().c_str(), MNT_DETACH);
}

void PrivateMounts::add(std::string const& source, std::string const& point, char const* type, unsigned long flags,
                        char const* options) {
    if (::mount(source.c_str(), point.c_str(), type, flags, options) != 0)
        throw std::system_error(errno, std::generic_category(), point);
    m_points.push_back(point);
}

void PrivateMounts::mountMemory(std::string const& point, char const* options) {
    add("memory", point, "tmpfs", 0, options);
}

void PrivateMounts::mountWithoutAttributes(std::string const& point) { add("memory", point, "ramfs", 0); }

void PrivateMounts::mountLayers(std::string const& below, std::string const& changes, std::string const& point) {
    std::string const options = "lowerdir=" + below + ",upperdir=" + changes + "/above,workdir=" + changes + "/work";
    if (::mount("layers", point.c_str(), "overlay", 0, options.c_str()) != 0)
        GTEST_SKIP() << "layers cannot be mounted here: " << std::strerror(errno);
    m_points.push_back(point);
}

void PrivateMounts::makeReadOnly(std::string const& point) {
    if (::mount(nullptr, point.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
        throw std::system_error(errno, std::generic_category(), point);
}

void PrivateMounts::bind(std::string const& folder, std::string const& point) { add(folder, point, nullptr, MS_BIND); }

void PrivateMounts::mountImage(std::string const& image, std::string const& point,
                               std::vector<std::string> const& options) {
    std::vector<std::string> make{"mkfs.ext4", "-q", "-F"};
    make.insert(make.end(), options.begin(), options.end());
    make.insert(make.end(), {image, "128M"});
    mountNewImage(make, image, point);
}

void PrivateMounts::mountImageOfType(std::string const& type, std::string const& image, std::string const& point) {
    constexpr off_t leastForAll = off_t{320} << 20;
    FileDescriptor const file(::open(image.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file.isOpen() || ::ftruncate(file.number(), leastForAll) != 0)
        throw std::system_error(errno, std::generic_category(), image);
    mountNewImage({"mkfs." + type, "-q", "-f", image}, image, point);
}

void PrivateMounts::mountServed(std::string const& folder, std::string const& point) {
    if (!ServedFolder::whyNone().empty()) GTEST_SKIP() << ServedFolder::whyNone();
    outputOf({ServedFolder::Server, "--no-allow-other", folder, point});
    m_points.push_back(point);
}

void PrivateMounts::unmount(std::string const& point) {
    if (::umount2(point.c_str(), MNT_DETACH) != 0) throw std::system_error(errno, std::generic_category(), point);
    std::erase(m_points, point);
}

void PrivateMounts::mountNewImage(std::vector<std::string> const& make, std::string const& image,
                                  std::string const& point) {
    try {
        outputOf(make);
        outputOf({"mount", "-o", "loop", image, point});
    } catch (std::runtime_error const& error) {
        GTEST_SKIP() << "an image cannot be mounted here: " << error.what();
    }
    m_points.push_back(point);
}

} // namespace mac::test
