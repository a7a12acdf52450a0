#include "platform/applescript/ScriptFileURLs.h"
#include "platform/foundation/Encodings.h"
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace mac::applescript {

namespace {

constexpr std::string_view FileScheme = "file://";
constexpr std::string_view ThisComputer = "localhost";
constexpr std::string_view ApplicationScheme = "eppc:///";
constexpr int Hexadecimal = 16;

struct Free {
    void operator()(char* text) const { std::free(text); }
};

std::string absolute(std::string_view path) {
    if (path.starts_with('/')) return std::string(path);
    std::unique_ptr<char, Free> const folder(::get_current_dir_name());
    return std::string(folder ? folder.get() : "") + "/" + std::string(path);
}

std::string escaped(std::string_view bytes) {
    constexpr std::string_view plain = "-._~/!$&'()*+,:@=";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (char const byte : bytes) {
        auto const value = static_cast<unsigned char>(byte);
        bool const isPlain = value < 0x80 && (std::isalnum(value) != 0 || plain.find(byte) != std::string_view::npos);
        if (isPlain) {
            text += byte;
            continue;
        }
        text += '%';
        text += digits[value >> 4U];
        text += digits[value & 15U];
    }
    return text;
}

std::optional<std::string> unescaped(std::string_view text) {
    std::string bytes;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == '\0') return {};
        if (text[index] != '%') {
            bytes += text[index];
            continue;
        }
        if (index + 2 >= text.size()) return {};
        unsigned value = 0;
        char const* const end = text.data() + index + 3;
        auto const [stop, failure] = std::from_chars(text.data() + index + 1, end, value, Hexadecimal);
        if (failure != std::errc() || stop != end || value == 0) return {};
        bytes += static_cast<char>(value);
        index += 2;
    }
    return bytes;
}

} // namespace

std::string fileURL(std::string_view path) {
    return std::string(FileScheme) + std::string(ThisComputer) + escaped(absolute(path));
}

std::optional<std::string> pathOfFileURL(std::string_view url) {
    if (!url.starts_with(FileScheme)) return {};
    url.remove_prefix(FileScheme.size());
    if (url.starts_with(ThisComputer)) url.remove_prefix(ThisComputer.size());
    if (!url.starts_with('/')) return {};
    return unescaped(url);
}

std::string applicationURL(std::u16string_view name) {
    return std::string(ApplicationScheme) + escaped(utf8FromUnits(name));
}

std::optional<std::u16string> nameOfApplicationURL(std::string_view url) {
    if (!url.starts_with(ApplicationScheme)) return {};
    std::optional<std::string> const name = unescaped(url.substr(ApplicationScheme.size()));
    return name ? unitsFromUTF8(*name) : std::nullopt;
}

} // namespace mac::applescript
