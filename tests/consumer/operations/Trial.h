#pragma once

#include "platform/foundation/collections/NSArray.h"
#include <functional>
#include <string>
#include <string_view>

// A program that calls each operation of the installed library. Every call is told to a Trial with the operation's name
// and whether it answered as it should; what is right is printed as "TOPIC NAME", so that the names can be compared
// with the list of operations.

namespace consumer {

// Where the program may make files: a folder that is empty at first.
class Places {
public:
    explicit Places(std::string folder) : m_folder(std::move(folder)) {}

    mac::NSString path(std::string_view name) const;
    // The path of a new file with the contents, or of a new folder.
    mac::NSString file(std::string_view name, std::string_view contents) const;
    mac::NSString folder(std::string_view name) const;

private:
    std::string bytes(std::string_view name) const { return m_folder + "/" + std::string(name); }

    std::string m_folder;
};

// One topic of the list of operations.
class Trial {
public:
    explicit Trial(std::string_view topic) : m_topic(topic) {}

    // Prints the operation's name if it answered as it should, else says on standard error that it did not.
    void expect(std::string_view operation, bool isRight) const;

    static bool hasFailed();

private:
    std::string m_topic;
};

bool isText(mac::id const& text, std::string_view expected);
// Whether the texts are the array's elements in order.
bool areTexts(mac::NSArray const& array, std::initializer_list<std::string_view> texts);
mac::NSArray numbers(std::initializer_list<int> values);

void tryCollections();
void tryKeyValues();
void tryText(Places const& places);
void tryIcons(Places const& places);
void tryInterface(Places const& places);
void tryFiles(Places const& places);
void tryFolders(Places const& places);
void tryMetadata(Places const& places);
void tryContents(Places const& places);
void tryNames(Places const& places);
void tryScripts();
void tryProcesses(Places const& places);
void tryReferences(Places const& places);
void tryURLs(Places const& places);

} // namespace consumer
