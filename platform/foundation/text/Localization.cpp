#include "platform/foundation/text/Localization.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/system/BytePath.h"
#include "platform/system/UserLanguages.h"
#include <QCoreApplication>
#include <QDateTime>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <algorithm>
#include <climits>
#include <limits>
#include <memory>
#include <sys/stat.h>

namespace mac {

namespace {

constexpr char TextContext[] = "Framekeeper";
constexpr char CatalogueFolder[] = "share/framekeeper/translations";
// Folders looked at above a program: an installed one lies six below the prefix.
constexpr int MostFoldersAbove = 7;

// A translator reads its texts where the bytes of the file lie.
struct Catalogue {
    NSData bytes{};
    std::unique_ptr<QTranslator> translator{};
};

struct Catalogues {
    Catalogue texts{};
    Catalogue toolkit{};
};

// Never destroyed: texts are asked for until the process ends.
Catalogues& catalogues() {
    static auto* const loaded = std::make_unique<Catalogues>().release();
    return *loaded;
}

bool isCatalogueFolder(std::string const& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Without a translator if there is no such file, or it is no catalogue. An application forgets a translator that ends.
Catalogue catalogueIn(std::string const& folder, std::string const& name) {
    NSString const path = NSString::stringWithFileSystemRepresentation_(BytePath(folder).joined(name));
    Catalogue catalogue{NSData::dataWithContentsOfFile_(path)};
    if (catalogue.bytes == nil || catalogue.bytes.length() > static_cast<NSUInteger>(INT_MAX)) return {};
    catalogue.translator = std::make_unique<QTranslator>();
    auto const* const bytes = reinterpret_cast<uchar const*>(catalogue.bytes.bytes());
    if (!catalogue.translator->load(bytes, static_cast<int>(catalogue.bytes.length()))) return {};
    if (QCoreApplication::instance()) QCoreApplication::installTranslator(catalogue.translator.get());
    return catalogue;
}

NSString catalogueString(QString const& text) {
    return NSString::stringWithCharacters_length_(reinterpret_cast<unichar const*>(text.utf16()),
                                                  static_cast<NSUInteger>(text.size()));
}

// Null if the catalogue lacks the key.
QString translated(NSString const& key, int count) {
    std::unique_ptr<QTranslator> const& texts = catalogues().texts.translator;
    return texts ? texts->translate(TextContext, key.UTF8String().c_str(), nullptr, count) : QString();
}

} // namespace

NSString NSLocalizedString(NSString const& key, NSString const&) {
    if (key == nil) return "";
    QString const text = translated(key, -1);
    return text.isEmpty() ? key : catalogueString(text);
}

NSString localizedCount(NSUInteger count, NSString const& one, NSString const& many, NSString const&) {
    // The form of a number beyond the catalogue's range depends on its last digits alone.
    constexpr NSUInteger range = 1'000'000'000;
    int const formNumber = static_cast<int>(count < range ? count : range + count % range);
    QString text = many == nil ? QString() : translated(many, formNumber);
    if (text.isEmpty()) {
        NSString const& english = count == 1 ? one : many;
        if (english == nil) return "";
        text = QString::fromUtf16(english.codeUnits().data(), static_cast<qsizetype>(english.length()));
    }
    return catalogueString(text.replace("%n", QString::number(count)));
}

std::string loadLocalization(std::string const& folder, std::vector<std::string> const& languages) {
    catalogues() = {};
    for (std::string const& language : languages) {
        if (language == "en" || language.starts_with("en_")) return {};
        catalogues().texts = catalogueIn(folder, "framekeeper_" + language + ".qm");
        if (!catalogues().texts.translator) continue;
        if (QCoreApplication::instance())
            catalogues().toolkit = catalogueIn(QLibraryInfo::path(QLibraryInfo::TranslationsPath).toStdString(),
                                               "qtbase_" + language + ".qm");
        return language;
    }
    return {};
}

std::string loadLocalization() {
    NSString const program = NSBundle::mainBundle().executablePath();
    std::string const folder = localizationFolder(program.fileSystemRepresentation().value_or(""));
    return folder.empty() ? std::string() : loadLocalization(folder, userLanguages());
}

std::string localizationFolder(std::string const& program) {
    BytePath above = BytePath(program).parent();
    for (int level = 0; level < MostFoldersAbove && above.bytes().size() > 1; ++level) {
        std::string folder = above.joined(CatalogueFolder);
        if (isCatalogueFolder(folder)) return folder;
        above = above.parent();
    }
    return {};
}

NSString localizedDate(NSDate const& date) {
    if (date == nil) return nil;
    // Beyond any year that a file can have, and within what a date of the toolkit can hold.
    constexpr double most = 1e15;
    double const milliseconds = std::clamp(date.timeIntervalSince1970() * 1000, -most, most);
    QDateTime const time = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(milliseconds));
    return NSString::stringWithUTF8String_(QLocale().toString(time, QLocale::ShortFormat).toStdString());
}

NSString localizedSize(std::uint64_t bytes) {
    auto const most = static_cast<std::uint64_t>(std::numeric_limits<qint64>::max());
    auto const size = static_cast<qint64>(std::min(bytes, most));
    QString const text = QLocale().formattedDataSize(size, 1, QLocale::DataSizeSIFormat);
    return NSString::stringWithUTF8String_(text.toStdString());
}

} // namespace mac
