#include "platform/system/PhysicalPath.h"
#include "platform/system/BytePath.h"
#include <cstdlib>
#include <memory>

namespace mac {

namespace {

std::string resolvedBySystem(std::string const& path) {
    std::unique_ptr<char, decltype(&std::free)> const resolved(::realpath(path.c_str(), nullptr), &std::free);
    return resolved ? resolved.get() : "";
}

bool namesNoItem(std::string_view leaf) { return leaf.empty() || leaf == "." || leaf == ".."; }

} // namespace

std::string physicalPath(std::string_view path) {
    if (path.empty()) return "";
    BytePath const given(path);
    if (namesNoItem(given.leaf())) {
        std::string const whole = resolvedBySystem(std::string(given.bytes()));
        if (!whole.empty()) return whole;
    }
    std::string const parent(given.parent());
    std::string const folder = resolvedBySystem(parent.empty() ? "." : parent);
    if (!folder.empty()) return BytePath(folder).joined(given.leaf());
    if (given.isAbsolute()) return std::string(given.bytes());
    return BytePath(resolvedBySystem(".")).joined(given.bytes());
}

} // namespace mac
