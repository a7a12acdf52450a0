#include "platform/desktop/entries/MIMETypes.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/items/OpenItem.h"
#include <QByteArray>
#include <QMimeDatabase>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// The rules of the shared MIME information look at no byte behind these.
constexpr std::size_t BytesToLookAt = 16384;

// A byte that is not UTF-8 matches no letter of a rule.
QString qtText(std::string_view bytes) { return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())); }

// Empty for a name with a NUL: such a name makes the database read past the end of its own file.
QString fileName(std::string_view name) { return name.find('\0') == std::string_view::npos ? qtText(name) : QString(); }

// Up to so many bytes from the file's start; fewer at its end or if reading fails.
std::string readBytes(FileDescriptor const& file, std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t length = 0;
    while (file.isOpen() && length < bytes.size()) {
        ssize_t const read = ::read(file.number(), bytes.data() + length, bytes.size() - length);
        if (read < 0 && errno == EINTR) continue;
        if (read <= 0) break;
        length += static_cast<std::size_t>(read);
    }
    bytes.resize(length);
    return bytes;
}

// The item is held while it is examined and opened, so that no other can be read in its place.
std::string firstBytes(std::string const& path, LinkAtEnd linkAtEnd) {
    Result<OpenItem> const opened = openItemAtPath(path, linkAtEnd);
    if (!opened.hasValue()) return {};
    struct stat status {};
    if (::fstat(opened.value().item.number(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    FileDescriptor const file(
        ::open(opened.value().systemPath().c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    return readBytes(file, BytesToLookAt);
}

} // namespace

std::vector<std::string> mimeTypesOfName(std::string_view name) {
    std::vector<std::string> names;
    for (QMimeType const& type : QMimeDatabase().mimeTypesForFileName(fileName(name)))
        names.push_back(type.name().toStdString());
    return names;
}

std::string mimeTypeOfNameAndBytes(std::string_view name, std::string_view bytes) {
    QByteArray const data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return QMimeDatabase().mimeTypeForFileNameAndData(fileName(name), data).name().toStdString();
}

std::string mimeTypeProvedByBytes(std::string_view bytes) {
    // Words begin like this, too: "MZ", "BZh", "ID3".
    constexpr std::size_t shortProof = 3;
    auto const typeOf = [](std::string_view data) {
        return QMimeDatabase().mimeTypeForData(
            QByteArray::fromRawData(data.data(), static_cast<qsizetype>(data.size())));
    };
    QMimeType const type = typeOf(bytes);
    if (type.isDefault() || type.name() == QLatin1String("text/plain")) return {};
    std::string_view const front = bytes.substr(0, shortProof);
    bool const isText = std::ranges::all_of(front, [](char byte) { return byte >= ' ' && byte <= '~'; });
    if (isText && typeOf(front) == type) return {};
    return type.name().toStdString();
}

std::string mimeTypeProvedByItem(std::string const& path, LinkAtEnd linkAtEnd) {
    return mimeTypeProvedByBytes(firstBytes(path, linkAtEnd));
}

std::string mimeTypeOfItem(std::string const& path, LinkAtEnd linkAtEnd) {
    return mimeTypeOfNameAndBytes(BytePath(path).leaf(), firstBytes(path, linkAtEnd));
}

std::vector<std::string> parentsOfMIMEType(std::string_view mimeType) {
    QMimeType const type = QMimeDatabase().mimeTypeForName(qtText(mimeType));
    std::vector<std::string> names;
    if (!type.isValid()) return names;
    for (QString const& parent : type.parentMimeTypes())
        names.push_back(parent.toStdString());
    return names;
}

std::vector<std::string> mimeTypeAndAncestors(std::string mimeType) {
    std::vector<std::string> types{std::move(mimeType)};
    for (std::size_t index = 0; index < types.size(); ++index) {
        for (std::string& parent : parentsOfMIMEType(types[index])) {
            if (std::ranges::find(types, parent) == types.end()) types.push_back(std::move(parent));
        }
    }
    return types;
}

std::string canonicalMIMEType(std::string_view mimeType) {
    QMimeType const type = QMimeDatabase().mimeTypeForName(qtText(mimeType));
    return type.isValid() ? type.name().toStdString() : std::string(mimeType);
}

std::vector<std::string> iconNamesOfMIMEType(std::string_view mimeType) {
    std::vector<std::string> names;
    for (std::string const& name : mimeTypeAndAncestors(std::string(mimeType))) {
        QMimeType const type = QMimeDatabase().mimeTypeForName(qtText(name));
        if (!type.isValid()) continue;
        for (QString const& icon : {type.iconName(), type.genericIconName()}) {
            std::string text = icon.toStdString();
            if (std::ranges::find(names, text) == names.end()) names.push_back(std::move(text));
        }
    }
    return names;
}

} // namespace mac
