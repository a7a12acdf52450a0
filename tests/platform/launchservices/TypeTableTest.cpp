#include "platform/files/references/FSRef.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/launchservices/ItemAttributes.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "platform/launchservices/TypeTree.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <array>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <set>
#include <sstream>

// The types that Mac OS X gives by extension, and what they conform to, against the system's table.
// FRAMEKEEPER_TEST_DATA is the folder with extensions.tsv.

namespace mac::test {
namespace {

struct ExtensionRow {
    std::string extension{};
    std::string identifier{};
    std::string preferredExtension{};
    std::set<std::string> ancestors{};
};

// Columns parted by tabs, ancestors by blanks; lines that begin with # are comments.
ExtensionRow rowOfLine(std::string const& line) {
    std::array<std::string, 4> columns;
    std::size_t column = 0;
    for (char const character : line) {
        if (character == '\t')
            ++column;
        else
            columns.at(column) += character;
    }
    ExtensionRow row{columns[0], columns[1], columns[2], {}};
    std::istringstream words(columns[3]);
    for (std::string word; words >> word;)
        row.ancestors.insert(word);
    return row;
}

std::vector<ExtensionRow> const& extensionRows() {
    static std::vector<ExtensionRow> const rows = [] {
        std::vector<ExtensionRow> read;
        std::ifstream file(FRAMEKEEPER_TEST_DATA "/extensions.tsv");
        for (std::string line; std::getline(file, line);) {
            if (!line.starts_with('#')) read.push_back(rowOfLine(line));
        }
        return read;
    }();
    return rows;
}

// An application's extension is that of bundles as well as of files.
std::string identifierOf(ExtensionRow const& row) {
    return UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension,
                                                 NSString::stringWithUTF8String_(row.extension),
                                                 row.extension == "app" ? NSString("public.data") : NSString())
        .UTF8String();
}

std::set<std::string> ancestorsOf(std::string const& identifier) {
    std::vector<std::string> const line = identifierAndAncestors(*knownTypes(), identifier);
    return {line.begin() + 1, line.end()};
}

std::string contentTypeAt(std::string const& path) {
    FSRef reference{};
    EXPECT_EQ(FSPathMakeRef(reinterpret_cast<std::uint8_t const*>(path.c_str()), &reference, nullptr), noErr);
    NSDictionary values;
    EXPECT_EQ(LSCopyItemAttributes(&reference, kLSRolesViewer, NSArray::arrayWithObject_(kLSItemContentType), &values),
              noErr);
    return as<NSString>(values.objectForKey_(kLSItemContentType)).UTF8String();
}

TEST(TypeTable, GivesTheIdentifierThatMacOSXGivesForAnExtension) {
    ASSERT_GT(extensionRows().size(), 500U);
    for (ExtensionRow const& row : extensionRows()) {
        EXPECT_EQ(identifierOf(row), row.identifier) << row.extension;
        EXPECT_EQ(UTTypeCopyPreferredTagWithClass(NSString::stringWithUTF8String_(row.identifier),
                                                  kUTTagClassFilenameExtension)
                      .UTF8String(),
                  row.preferredExtension)
            << row.extension;
    }
    std::cout << extensionRows().size() << " extensions compared\n";
}

TEST(TypeTable, ConformsToWhatMacOSXSaysAndNothingElse) {
    for (ExtensionRow const& row : extensionRows())
        EXPECT_EQ(ancestorsOf(row.identifier), row.ancestors) << row.extension;
    std::cout << extensionRows().size() << " conformances compared\n";
}

TEST(TypeTable, TellsTheSameOfItems) {
    TemporaryFolder const folder;
    for (ExtensionRow const& row : extensionRows()) {
        std::string const name = "a." + row.extension;
        bool const isFolder = row.ancestors.contains("public.directory");
        EXPECT_EQ(contentTypeAt(isFolder ? folder.makeFolder(name) : folder.makeFile(name, "")), row.identifier);
    }
    std::cout << extensionRows().size() << " items compared\n";
}

TEST(TypeTable, TellsTheKindOfEveryExtension) {
    for (ExtensionRow const& row : extensionRows()) {
        for (char const* kind : {"public.image", "public.audio", "public.movie", "public.text", "public.archive"})
            EXPECT_EQ(UTTypeConformsTo(NSString::stringWithUTF8String_(identifierOf(row)),
                                       NSString::stringWithUTF8String_(kind)),
                      row.ancestors.contains(kind))
                << row.extension << " " << kind;
    }
}

} // namespace
} // namespace mac::test
