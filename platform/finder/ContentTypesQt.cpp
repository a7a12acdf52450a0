#include "platform/finder/ContentTypes.h"
#include "platform/foundation/LongPath.h"
#include <QByteArray>
#include <QMimeDatabase>
#include <QMimeType>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// As many as the rules of the database look at.
constexpr qsizetype MostBytes = 16'384;

QByteArray firstBytes(std::string const& path) {
    // To open what is no file can wait for ever, or do things.
    std::optional<FileStatus> const status = fileStatusAtPath(path);
    if (!status || status->kind != FileStatus::Kind::File) return {};
    FileDescriptor const file = openPath(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    QByteArray bytes(MostBytes, '\0');
    ssize_t const count = file.isOpen() ? ::read(file.number(), bytes.data(), static_cast<std::size_t>(MostBytes)) : 0;
    bytes.resize(count > 0 ? count : 0);
    return bytes;
}

} // namespace

std::vector<std::string> contentTypesOfFile(std::string const& path) {
    QMimeDatabase const database;
    // The name matters for its extension: bytes that are no text change nothing there.
    QString const name = QString::fromLocal8Bit(path.substr(path.rfind('/') + 1).c_str());
    QMimeType const type = database.mimeTypeForFileNameAndData(name, firstBytes(path));
    std::vector<std::string> types{type.name().toStdString()};
    for (QString const& ancestor : type.allAncestors())
        types.push_back(ancestor.toStdString());
    return types;
}

} // namespace mac
