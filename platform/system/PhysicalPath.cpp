#include "platform/system/PhysicalPath.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/ItemIdentity.h"
#include <cstdlib>
#include <fcntl.h>
#include <memory>

namespace mac {

namespace {

// Empty where the system itself finds no path: in a current folder that is gone, and past the longest path it takes.
std::string resolvedBySystem(std::string const& path) {
    std::unique_ptr<char, decltype(&std::free)> const resolved(::realpath(path.c_str(), nullptr), &std::free);
    return resolved ? resolved.get() : "";
}

// A relative path stays so in a current folder that is gone.
std::string madeAbsolute(BytePath path) {
    if (path.isAbsolute()) return std::string(path.bytes());
    return BytePath(resolvedBySystem(".")).joined(path.bytes());
}

bool leadsTo(std::string const& path, ItemIdentity const& item) {
    if (!BytePath(path).isAbsolute()) return false;
    Result<IdentifiedItem> const found = identifyAtPath(path, LinkAtEnd::IsNotFollowed);
    return found.hasValue() && found.value().identity == item;
}

// The path of the folder that the system opens, seen to lead to that very folder; empty if there is none.
std::string resolvedFolder(std::string const& path) {
    if (std::string resolved = resolvedBySystem(path); !resolved.empty()) return resolved;
    Result<FileDescriptor> const folder = openPath(path, O_PATH | O_DIRECTORY);
    if (!folder.hasValue()) return "";
    Result<IdentifiedItem> const opened = identify(folder.value());
    if (!opened.hasValue()) return "";
    std::string known = systemsPath(folder.value()).valueOr("");
    if (leadsTo(known, opened.value().identity)) return known;
    // Longer than the system tells.
    std::string followed = resolvedPath(madeAbsolute(path));
    return leadsTo(followed, opened.value().identity) ? followed : "";
}

bool namesNoItem(std::string_view leaf) { return leaf.empty() || leaf == "." || leaf == ".."; }

} // namespace

std::string physicalPath(std::string_view path) {
    if (path.empty()) return "";
    BytePath const given(path);
    if (namesNoItem(given.leaf())) {
        std::string const whole = resolvedFolder(std::string(given.bytes()));
        if (!whole.empty()) return whole;
    }
    std::string const parent(given.parent());
    std::string const folder = resolvedFolder(parent.empty() ? "." : parent);
    return folder.empty() ? madeAbsolute(given) : BytePath(folder).joined(given.leaf());
}

} // namespace mac
