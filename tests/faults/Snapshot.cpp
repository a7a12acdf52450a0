#include "tests/faults/Snapshot.h"
#include "platform/system/items/AppleDouble.h"
#include "platform/system/items/KeptCreationDate.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <span>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <system_error>
#include <unistd.h>

namespace mac::faults {

namespace {

constexpr std::string_view SecretBegin = "<secret:";
constexpr char SecretEnd = '>';
constexpr std::string_view AccessLists = "system.posix_acl_";

[[noreturn]] void fail(std::string const& what) { throw std::system_error(errno, std::generic_category(), what); }

void addSecrets(SeenItem& item, std::string_view text) {
    for (std::size_t at = text.find(SecretBegin); at != std::string_view::npos; at = text.find(SecretBegin, at + 1)) {
        std::size_t const end = text.find(SecretEnd, at);
        if (end != std::string_view::npos) item.secrets.emplace_back(text.substr(at, end - at + 1));
    }
}

// When an item was trashed differs between two runs.
std::string withoutDate(std::string text) {
    constexpr std::string_view key = "DeletionDate=";
    std::size_t const at = text.find(key);
    if (at == std::string::npos || !text.starts_with("[Trash Info]")) return text;
    for (std::size_t place = at + key.size(); place < text.size() && text[place] != '\n'; ++place)
        if (text[place] >= '0' && text[place] <= '9') text[place] = 'x';
    return text;
}

// A name in the trash that tells the time of day, "x 14-05-22", as "x *".
std::string withoutTimeOfDay(std::string name) {
    constexpr std::string_view form = " dd-dd-dd";
    for (std::size_t at = name.find(' '); at != std::string::npos; at = name.find(' ', at + 1)) {
        std::string_view const rest = std::string_view(name).substr(at, form.size());
        bool const isTime = rest.size() == form.size() && std::ranges::equal(rest, form, [](char is, char wanted) {
                                return wanted == 'd' ? is >= '0' && is <= '9' : is == wanted;
                            });
        if (isTime) return name.replace(at, form.size(), " *");
    }
    return name;
}

std::string contentsOf(std::string const& path, std::size_t size) {
    int const file = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0) fail(path);
    std::string text(size + 1, '\0');
    std::size_t length = 0;
    for (;;) {
        ssize_t const count = ::read(file, text.data() + length, text.size() - length);
        if (count < 0) fail(path);
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
        if (length == text.size()) text.resize(2 * length);
    }
    ::close(file);
    text.resize(length);
    return text;
}

std::string linkTarget(std::string const& path) {
    std::array<char, 4096> text{};
    ssize_t const length = ::readlink(path.c_str(), text.data(), text.size());
    if (length < 0) fail(path);
    return {text.data(), static_cast<std::size_t>(length)};
}

void addAttributes(SeenItem& item, std::string const& path) {
    std::array<char, 8192> names{};
    ssize_t const length = ::llistxattr(path.c_str(), names.data(), names.size());
    if (length <= 0) return;
    std::vector<std::string> sorted;
    for (std::string_view rest(names.data(), static_cast<std::size_t>(length)); !rest.empty();) {
        sorted.emplace_back(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(sorted.back().size() + 1);
    }
    std::ranges::sort(sorted);
    for (std::string const& name : sorted) {
        ssize_t const size = ::lgetxattr(path.c_str(), name.c_str(), nullptr, 0);
        std::string text(static_cast<std::size_t>(std::max<ssize_t>(size, 0)), '\0');
        if (size < 0 || ::lgetxattr(path.c_str(), name.c_str(), text.data(), text.size()) != size) continue;
        // The date at which the fixture was made.
        if (name.ends_with(CreateDateAttribute)) text.assign(text.size(), 'd');
        bool const isAccess = name.starts_with(AccessLists);
        addSecrets(item, text);
        if (isAccess)
            item.accessList += "\n" + name + "=" + text;
        else
            item.attributes.emplace(name, std::move(text));
    }
}

bool isImmutable(std::string const& path) {
    struct statx status {};
    return ::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, 0, &status) == 0 &&
           (status.stx_attributes & STATX_ATTR_IMMUTABLE) != 0;
}

// The contents of a sidecar without the date at which the fixture was made; other contents as they are.
std::string withoutCreationDate(std::string text) {
    Result<AppleDouble, Failure> read = AppleDouble::read(std::as_bytes(std::span(text)));
    std::optional<std::span<std::byte const>> const date =
        read.hasValue() ? read.value().valueOf(CreateDateAttribute) : std::nullopt;
    if (!date) return text;
    std::vector<std::byte> const fixed(date->size(), std::byte{'d'});
    if (!read.value().setValue(CreateDateAttribute, fixed)) return text;
    std::optional<std::vector<std::byte>> const bytes = read.value().written();
    return bytes ? std::string(reinterpret_cast<char const*>(bytes->data()), bytes->size()) : text;
}

SeenItem seen(std::string const& path, struct stat const& status) {
    SeenItem item{.kind = std::to_string(status.st_mode & S_IFMT),
                  .owner = status.st_uid,
                  .group = status.st_gid,
                  .mode = status.st_mode & 07777U,
                  .isFolder = S_ISDIR(status.st_mode)};
    std::string text;
    if (S_ISREG(status.st_mode)) text = contentsOf(path, static_cast<std::size_t>(status.st_size));
    if (S_ISLNK(status.st_mode)) text = linkTarget(path);
    addSecrets(item, text);
    if (S_ISREG(status.st_mode) && isImmutable(path)) item.kind += " locked";
    if (S_ISREG(status.st_mode) && status.st_mtim.tv_sec == FixtureDate) item.kind += " dated";
    item.contents = withoutDate(withoutCreationDate(std::move(text)));
    if (!S_ISLNK(status.st_mode)) addAttributes(item, path);
    return item;
}

// Lets this user, who is not root, read an item of their own that its permissions close; closes it again at the end.
class OpenedItem {
public:
    OpenedItem(std::string const& path, struct stat const& status)
        : m_path(path), m_mode(status.st_mode & 07777U),
          m_isOpened(!S_ISLNK(status.st_mode) && (m_mode & wanted(status)) != wanted(status) &&
                     status.st_uid == ::geteuid() && ::geteuid() != 0 &&
                     ::chmod(path.c_str(), m_mode | wanted(status)) == 0) {}
    ~OpenedItem() {
        if (m_isOpened) ::chmod(m_path.c_str(), m_mode);
    }
    OpenedItem(OpenedItem const&) = delete;
    OpenedItem& operator=(OpenedItem const&) = delete;

private:
    static unsigned wanted(struct stat const& status) {
        return S_ISDIR(status.st_mode) ? S_IRUSR | S_IXUSR : unsigned{S_IRUSR};
    }

    std::string const& m_path;
    unsigned m_mode;
    bool m_isOpened;
};

// Adds what the sidecar holds to its item; false if it holds more than attributes, or is none.
bool addSidecar(SeenItem& item, SeenItem const& sidecar) {
    Result<AppleDouble, Failure> const read = AppleDouble::read(std::as_bytes(std::span(sidecar.contents)));
    if (!read.hasValue() || !read.value().otherParts.empty()) return false;
    for (std::string const& name : read.value().names()) {
        std::span<std::byte const> const value = *read.value().valueOf(name);
        std::string text(reinterpret_cast<char const*>(value.data()), value.size());
        if (!item.attributes.emplace("user." + name, text).second) continue;
        addSecrets(item, text);
    }
    return true;
}

} // namespace

Snapshot asLibraryReads(Snapshot const& snapshot) {
    constexpr std::string_view prefix = "._";
    Snapshot all = snapshot;
    for (auto const& [path, sidecar] : snapshot) {
        std::size_t const leaf = path.rfind('/') + 1;
        if (!std::string_view(path).substr(leaf).starts_with(prefix)) continue;
        auto const item = all.find(path.substr(0, leaf) + path.substr(leaf + prefix.size()));
        if (item != all.end() && addSidecar(item->second, sidecar)) all.erase(path);
    }
    for (auto& [path, item] : all)
        std::ranges::sort(item.secrets);
    return all;
}

std::string secretText(std::string_view name) {
    return std::string(SecretBegin) + std::string(name) + std::string(1, SecretEnd);
}

void addItems(Snapshot& snapshot, std::string const& folder, std::string const& prefix) {
    std::unique_ptr<DIR, int (*)(DIR*)> const open(::opendir(folder.c_str()), &::closedir);
    if (!open) fail(folder);
    while (dirent const* const entry = ::readdir(open.get())) {
        std::string const name = entry->d_name;
        if (name == "." || name == "..") continue;
        std::string const path = folder + "/" + name;
        struct stat status {};
        if (::lstat(path.c_str(), &status) != 0) fail(path);
        OpenedItem const opened(path, status);
        SeenItem item = seen(path, status);
        bool const isFolder = item.isFolder;
        std::string const shown = prefix + withoutTimeOfDay(name);
        snapshot.emplace(shown, std::move(item));
        if (isFolder) addItems(snapshot, path, shown + "/");
    }
}

} // namespace mac::faults
