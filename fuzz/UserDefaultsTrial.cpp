#include "fuzz/Trials.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/preferences/PreferenceDomains.h"
#include "platform/preferences/Preferences.h"
#include "platform/system/LongPath.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <string_view>
#include <vector>

namespace mac::fuzz {

namespace {

constexpr char AddedKey[] = "added by the trial";

// Equal for equal lists; nil for what is no property list.
NSData bytesOfDefaults(NSDictionary const& values) {
    return NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(
        values, NSPropertyListBinaryFormat_v1_0, nullptr);
}

std::string complaintAboutFile(std::span<std::byte const> bytes) {
    test::TemporaryFolder const folder;
    std::string_view const text(reinterpret_cast<char const*>(bytes.data()), bytes.size());
    PreferenceDomain const domain{.file = folder.makeFile("domain.plist", text)};
    Preferences preferences({});
    NSMutableDictionary const expected = NSMutableDictionary::dictionaryWithDictionary_(preferences.values(domain));
    bool const isReadable = !preferences.readingProblem(domain);
    expected.setObject_forKey_("value", AddedKey);
    preferences.setValue(domain, AddedKey, "value");
    bool const isWritten = preferences.synchronize(domain).isDone();
    if (isWritten != isReadable) return isReadable ? "it was read and not written" : "it was overwritten";
    if (isReadable) {
        NSData const found = bytesOfDefaults(preferences.values(domain));
        return bytesOfDefaults(expected).isEqualToData_(found) ? "" : "a value was lost or changed";
    }
    Result<FileContents> const now = readFileAtPath(domain.file, bytes.size());
    return now.hasValue() && std::ranges::equal(now.value().bytes, bytes) ? "" : "a damaged file was changed";
}

std::string complaintAboutArguments(std::string_view text) {
    std::vector<std::string> words{"program"};
    for (std::size_t start = 0; start <= text.size();) {
        std::size_t const end = std::min(text.find('\0', start), text.size());
        words.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    NSDictionary const values = argumentDomain(words);
    if (values.count() >= (words.size() + 1) / 2) return "there are more arguments than words";
    return bytesOfDefaults(values) == nil ? "an argument is no property list" : "";
}

} // namespace

std::string complaintAboutUserDefaults(std::span<std::byte const> bytes) {
    std::string const complaint = complaintAboutFile(bytes);
    if (!complaint.empty()) return complaint;
    return complaintAboutArguments({reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

} // namespace mac::fuzz
