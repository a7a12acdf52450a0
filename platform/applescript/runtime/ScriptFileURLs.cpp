#include "platform/applescript/runtime/ScriptFileURLs.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/PercentEscapes.h"
#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace mac::applescript {

namespace {

constexpr std::string_view FileScheme = "file://";
constexpr std::string_view ThisComputer = "localhost";
constexpr std::string_view ApplicationScheme = "eppc:///";

struct Free {
    void operator()(char* text) const { std::free(text); }
};

std::string absolute(std::string_view path) {
    if (path.starts_with('/')) return std::string(path);
    std::unique_ptr<char, Free> const folder(::get_current_dir_name());
    return std::string(folder ? folder.get() : "") + "/" + std::string(path);
}

// No path holds a byte of zero.
std::optional<std::string> unescaped(std::string_view text) {
    std::optional<std::string> bytes = percentUnescaped(text);
    return bytes && bytes->find('\0') == std::string::npos ? bytes : std::nullopt;
}

} // namespace

std::string fileURL(std::string_view path) {
    return std::string(FileScheme) + std::string(ThisComputer) + percentEscaped(absolute(path));
}

std::optional<std::string> pathOfFileURL(std::string_view url) {
    if (!url.starts_with(FileScheme)) return {};
    url.remove_prefix(FileScheme.size());
    if (url.starts_with(ThisComputer)) url.remove_prefix(ThisComputer.size());
    if (!url.starts_with('/')) return {};
    return unescaped(url);
}

std::string applicationURL(std::u16string_view name) {
    return std::string(ApplicationScheme) + percentEscaped(utf8FromUnits(name));
}

std::optional<std::u16string> nameOfApplicationURL(std::string_view url) {
    if (!url.starts_with(ApplicationScheme)) return {};
    std::optional<std::string> const name = unescaped(url.substr(ApplicationScheme.size()));
    return name ? unitsFromUTF8(*name) : std::nullopt;
}

} // namespace mac::applescript
