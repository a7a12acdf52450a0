#include "command/Report.h"
#include "command/Copies.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/foundation/text/VisibleLine.h"
#include "platform/processes/Processes.h"
#include "platform/system/PercentEscapes.h"
#include <algorithm>
#include <array>
#include <bit>
#include <functional>

namespace framekeeper {

namespace {

// The keys of a record, made once: a list reads each of them as often as it has copies.
struct RecordKeys {
    NSString path = "path";
    NSString psn = "psn";
    NSString version = "version";
    NSString versionString = "versionString";
    NSString exists = "exists";
    NSString isRunning = "isRunning";
    NSString isAutolaunched = "isAutolaunched";
    NSString isInToolbar = "isInToolbar";

    static RecordKeys const& shared() {
        static RecordKeys const keys;
        return keys;
    }
};

id valueIn(id const& record, NSString const& key) { return as<NSDictionary>(record).objectForKey_(key); }

NSString textIn(id const& record, NSString const& key) { return as<NSString>(valueIn(record, key)); }

// nil for a path that tells no version: its record holds an empty text.
NSString versionIn(id const& record, NSString const& key) {
    NSString const version = textIn(record, key);
    return version.length() == 0 ? NSString() : version;
}

bool flagIn(id const& record, NSString const& key) { return as<NSNumber>(valueIn(record, key)).boolValue(); }

std::string visible(NSString const& text) { return text == nil ? "–" : visibleLine(text.codeUnits()); }

// The functions below write behind what the document has already: copies of texts are most of what a long list costs.

// Whether the unit stands for itself in the document.
bool isPlain(char16_t unit) { return unit >= u' ' && unit < 0x7F && unit != u'"' && unit != u'\\'; }

void appendText(std::string& json, NSString const& text) {
    if (text == nil) {
        json += "null";
        return;
    }
    std::u16string_view const units = text.codeUnits();
    if (std::ranges::all_of(units, isPlain)) {
        json += '"';
        std::size_t const end = json.size();
        json.resize(end + units.size());
        std::ranges::copy(units, json.begin() + static_cast<std::ptrdiff_t>(end));
        json += '"';
        return;
    }
    constexpr std::string_view digits = "0123456789abcdef";
    json += '"';
    for (char const byte : utf8FromUnits(units)) {
        auto const code = static_cast<unsigned char>(byte);
        if (byte == '"' || byte == '\\')
            (json += '\\') += byte;
        else if (code < 0x20 || code == 0x7F)
            ((json += "\\u00") += digits[code >> 4U]) += digits[code & 0xFU];
        else
            json += byte;
    }
    json += '"';
}

void appendFlag(std::string& json, std::string_view key, bool value) {
    ((json += ", \"") += key) += value ? "\": true" : "\": false";
}

// As "path" and "uri", or as "newPath" and "newUri".
enum class PathKeys { Plain, New };

void appendPath(std::string& json, NSString const& path, PathKeys keys = PathKeys::Plain) {
    json += keys == PathKeys::Plain ? "\"path\": " : "\"newPath\": ";
    appendText(json, path);
    json += keys == PathKeys::Plain ? R"(, "uri": "file://)" : R"(, "newUri": "file://)";
    (json += percentEscaped(bytesOfPath(path))) += '"';
}

// The process's ID; nullopt if the record has no process, or it has ended meanwhile.
std::optional<std::int32_t> processOf(id const& record) {
    NSNumber const number = as<NSNumber>(valueIn(record, RecordKeys::shared().psn));
    if (number == nil) return {};
    auto const psn = std::bit_cast<ProcessSerialNumber>(static_cast<std::uint64_t>(number.longLongValue()));
    std::int32_t process = 0;
    return GetProcessPID(&psn, &process) == noErr ? std::optional(process) : std::nullopt;
}

void appendRecord(std::string& json, id const& record) {
    RecordKeys const& keys = RecordKeys::shared();
    std::optional<std::int32_t> const process = processOf(record);
    json += '{';
    appendPath(json, textIn(record, keys.path));
    json += ", \"version\": ";
    appendText(json, versionIn(record, keys.version));
    json += ", \"versionString\": ";
    appendText(json, versionIn(record, keys.versionString));
    appendFlag(json, "exists", flagIn(record, keys.exists));
    appendFlag(json, "isRunning", flagIn(record, keys.isRunning));
    (json += ", \"processID\": ") += process ? std::to_string(*process) : "null";
    appendFlag(json, "isAutolaunched", flagIn(record, keys.isAutolaunched));
    appendFlag(json, "isInToolbar", flagIn(record, keys.isInToolbar));
    json += '}';
}

void appendOutcome(std::string& json, Outcome const& outcome) {
    json += '{';
    appendPath(json, outcome.path);
    ((json += R"(, "status": ")") += nameOf(outcome.status)) += '"';
    if (outcome.newPath != nil) appendPath(json += ", ", outcome.newPath, PathKeys::New);
    if (outcome.reason != nil) appendText(json += ", \"reason\": ", outcome.reason);
    json += '}';
}

// How many bytes of a document get their place beforehand.
constexpr std::size_t MostReserved = std::size_t{64} << 20;

std::string jsonDocument(char const* key, std::size_t count,
                         std::function<void(std::string& json, std::size_t index)> const& append) {
    std::string json = "{\"framekeeper\": " + std::to_string(JSONVersion) + ", \"" + key + "\": [";
    for (std::size_t index = 0; index < count; ++index) {
        append(json += index == 0 ? "\n  " : ",\n  ", index);
        // About as much for each as for the first: a text that grows while it is written is copied again and again.
        if (index == 0) json.reserve(std::min(json.size(), MostReserved / count) * count);
    }
    json += count == 0 ? "]}\n" : "\n]}\n";
    return json;
}

id recordAt(NSArray const& records, std::size_t index) {
    return records.objectAtIndex_(static_cast<NSUInteger>(index));
}

std::string jsonRecords(NSArray const& records) {
    return jsonDocument("copies", records.count(),
                        [&](std::string& json, std::size_t index) { appendRecord(json, recordAt(records, index)); });
}

std::string separatedPaths(NSArray const& records) {
    std::string bytes;
    for (NSUInteger index = 0; index < records.count(); ++index)
        (bytes += bytesOfPath(textIn(records.objectAtIndex_(index), RecordKeys::shared().path))) += '\0';
    return bytes;
}

constexpr std::size_t Columns = 6;
using Row = std::array<std::string, Columns>;

Row rowOf(id const& record) {
    RecordKeys const& keys = RecordKeys::shared();
    auto const mark = [&](NSString const& key) { return std::string(flagIn(record, key) ? localized("yes") : "–"); };
    return {visible(versionIn(record, keys.versionString)),
            mark(keys.exists),
            mark(keys.isRunning),
            mark(keys.isAutolaunched),
            mark(keys.isInToolbar),
            visible(textIn(record, keys.path))};
}

// Counted in characters, which bytes that continue one do not begin.
std::size_t widthOf(std::string const& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

// Columns of a label and the space behind it.
constexpr std::size_t LabelWidth = 11;

std::string table(NSArray const& records) {
    if (records.count() == 0) return localized("No copies.") + "\n";
    std::vector<Row> rows{{localized("VERSION"), localized("EXISTS"), localized("RUNS"), localized("LOGIN"),
                           localized("PLACES"), localized("PATH")}};
    for (NSUInteger index = 0; index < records.count(); ++index)
        rows.push_back(rowOf(records.objectAtIndex_(index)));
    std::array<std::size_t, Columns> widths{};
    for (Row const& row : rows)
        for (std::size_t column = 0; column < Columns; ++column)
            widths.at(column) = std::max(widths.at(column), widthOf(row.at(column)));
    std::string text;
    for (Row const& row : rows) {
        for (std::size_t column = 0; column + 1 < Columns; ++column)
            (text += row.at(column)).append(widths.at(column) - widthOf(row.at(column)) + 2, ' ');
        (text += row.back()) += '\n';
    }
    return text;
}

std::string detailsOf(id const& record) {
    RecordKeys const& keys = RecordKeys::shared();
    auto const answer = [&](NSString const& key) { return flagIn(record, key) ? localized("yes") : localized("no"); };
    std::optional<std::int32_t> const process = processOf(record);
    std::string const runs =
        process ? filledIn(localized("yes, as process %@"), std::to_string(*process)) : answer(keys.isRunning);
    std::array<std::pair<std::string, std::string>, 6> const lines{{
        {localized("Path:"), visible(textIn(record, keys.path))},
        {localized("Version:"), visible(versionIn(record, keys.versionString))},
        {localized("Exists:"), answer(keys.exists)},
        {localized("Runs:"), runs},
        {localized("Login:"), answer(keys.isAutolaunched)},
        {localized("Places:"), answer(keys.isInToolbar)},
    }};
    std::string text;
    for (auto const& [label, value] : lines) {
        std::size_t const width = widthOf(label);
        ((text += label).append(width < LabelWidth ? LabelWidth - width : 1, ' ') += value) += '\n';
    }
    return text;
}

} // namespace

std::string localized(char const* key) {
    return NSLocalizedString(NSString::stringWithUTF8String_(key), nil).UTF8String();
}

std::string filledIn(std::string text, std::string const& value) {
    constexpr std::string_view place = "%@";
    std::size_t const found = text.find(place);
    return found == std::string::npos ? text : text.replace(found, place.size(), value);
}

std::string listing(NSArray const& records, OutputForm form) {
    if (form == OutputForm::JSON) return jsonRecords(records);
    return form == OutputForm::NullSeparated ? separatedPaths(records) : table(records);
}

std::string details(NSArray const& records, OutputForm form) {
    if (form != OutputForm::Table) return listing(records, form);
    std::string text;
    for (NSUInteger index = 0; index < records.count(); ++index)
        (text += index == 0 ? "" : "\n") += detailsOf(records.objectAtIndex_(index));
    return text;
}

std::string results(std::vector<Outcome> const& outcomes, OutputForm form) {
    if (form == OutputForm::JSON)
        return jsonDocument("results", outcomes.size(),
                            [&](std::string& json, std::size_t index) { appendOutcome(json, outcomes[index]); });
    std::string text;
    for (Outcome const& outcome : outcomes) {
        if (outcome.newPath == nil) continue;
        if (form == OutputForm::NullSeparated)
            (text += bytesOfPath(outcome.newPath)) += '\0';
        else
            (text += visible(outcome.newPath)) += '\n';
    }
    return text;
}

std::string complaints(std::vector<Outcome> const& outcomes) {
    std::string text;
    for (Outcome const& outcome : outcomes) {
        if (outcome.status == Status::Done) continue;
        text += "framekeeper-cli: " + visible(outcome.path) + ": ";
        text +=
            outcome.reason == nil ? localized(nameOf(outcome.status)) : visible(NSLocalizedString(outcome.reason, nil));
        text += '\n';
    }
    return text;
}

} // namespace framekeeper
