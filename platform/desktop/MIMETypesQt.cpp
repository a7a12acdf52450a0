#include "platform/desktop/MIMETypes.h"
#include <QByteArray>
#include <QMimeDatabase>

namespace mac {

namespace {

// A byte that is no UTF-8 belongs to no rule's letters.
QString textOf(std::string_view bytes) { return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())); }

// Empty for what is no file's name: with a NUL the database reads behind the end of its own file.
QString fileName(std::string_view name) { return name.find('\0') == std::string_view::npos ? textOf(name) : QString(); }

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

std::vector<std::string> parentsOfMIMEType(std::string_view mimeType) {
    QMimeType const type = QMimeDatabase().mimeTypeForName(textOf(mimeType));
    std::vector<std::string> names;
    if (!type.isValid()) return names;
    for (QString const& parent : type.parentMimeTypes())
        names.push_back(parent.toStdString());
    return names;
}

std::string canonicalMIMEType(std::string_view mimeType) {
    QMimeType const type = QMimeDatabase().mimeTypeForName(textOf(mimeType));
    return type.isValid() ? type.name().toStdString() : std::string(mimeType);
}

} // namespace mac
