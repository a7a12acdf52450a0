#include "platform/system/SymbolicLinks.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <fcntl.h>
#include <vector>

namespace mac {

namespace {

// As many as the kernel follows in one path.
constexpr unsigned MostLinks = 40;

// The components of a path, the first one last, so that those of a link are put in front.
void pushComponents(std::vector<std::string>& components, std::string_view path) {
    while (!path.empty()) {
        std::size_t const slash = path.rfind('/');
        std::size_t const start = slash == std::string_view::npos ? 0 : slash + 1;
        std::string_view const component = path.substr(start);
        if (!component.empty() && component != ".") components.emplace_back(component);
        path = path.substr(0, start == 0 ? 0 : start - 1);
    }
}

// Empty for what is no link, or not there.
std::string linkTarget(std::string const& path) {
    SplitPath const parts = splitPath(path);
    FileDescriptor const folder = openPath(parts.folder, O_PATH | O_DIRECTORY);
    return folder.isOpen() ? linkTextIn(folder, parts.name).value_or("") : std::string();
}

void removeLastComponent(std::string& path) { path.resize(path.empty() ? 0 : path.rfind('/')); }

} // namespace

std::string resolvedPath(std::string const& path) {
    std::vector<std::string> components;
    pushComponents(components, path);
    std::string resolved;
    unsigned links = 0;
    while (!components.empty()) {
        std::string const component = std::move(components.back());
        components.pop_back();
        if (component == "..") {
            removeLastComponent(resolved);
            continue;
        }
        std::size_t const folderLength = resolved.size();
        resolved.append("/").append(component);
        std::string const target = linkTarget(resolved);
        if (target.empty()) continue;
        if (++links > MostLinks) return path;
        resolved.resize(target.starts_with('/') ? 0 : folderLength);
        pushComponents(components, target);
    }
    return resolved.empty() ? "/" : resolved;
}

bool pathExists(std::string const& path) { return fileStatusAtPath(path).has_value(); }

} // namespace mac
