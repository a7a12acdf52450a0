#include "command/HostFacts.h"
#include "platform/foundation/propertylists/JSONObject.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/VisibleLine.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "platform/system/PercentEscapes.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <new>

namespace framekeeper {

using namespace mac;

namespace {

// The form of the facts that is understood; others may mean something else by the same keys.
constexpr std::int64_t UnderstoodForm = 1;

constexpr std::string_view FactsSuffix = ".json";

struct AnswerRow {
    HostAnswer answer;
    char const* name;
};

// In the order of the enumerators.
constexpr std::array Answers{
    AnswerRow{HostAnswer::Complete, "complete"}, AnswerRow{HostAnswer::Failed, "failed"},
    AnswerRow{HostAnswer::Late, "late"},         AnswerRow{HostAnswer::Never, "never"},
    AnswerRow{HostAnswer::Rubbish, "rubbish"},
};

std::string visibleBytes(std::string_view bytes) { return visibleLine(unitsFromFileSystemBytes(bytes)); }

HostFacts withoutCopies(std::string_view name, HostAnswer answer, std::string reason) {
    return {.name = std::string(name), .answer = answer, .reason = std::move(reason)};
}

// The bytes of an absolute path in a "file" URI without a host; nullopt for any other text.
std::optional<std::string> pathInURI(std::string_view uri) {
    constexpr std::string_view scheme = "file://";
    if (!uri.starts_with(scheme)) return std::nullopt;
    std::optional<std::string> path = percentUnescaped(uri.substr(scheme.size()));
    bool const isPath = path && path->starts_with('/') && path->find('\0') == std::string::npos;
    return isPath ? path : std::nullopt;
}

// A version may be null; any other kind than a text is a problem.
std::optional<std::string> versionIn(JSONObject const& object, std::string_view key) {
    return object.isNull(key) ? std::optional(std::string()) : object.text(key);
}

std::optional<CopyFacts> copyIn(JSONObject const& object) {
    std::optional<std::string> const path = pathInURI(object.text("uri").value_or(""));
    std::optional<std::string> const version = versionIn(object, "version");
    std::optional<std::string> const versionString = versionIn(object, "versionString");
    std::optional<bool> const exists = object.flag("exists");
    std::optional<bool> const isRunning = object.flag("isRunning");
    std::optional<bool> const isAutolaunched = object.flag("isAutolaunched");
    std::optional<bool> const isInToolbar = object.flag("isInToolbar");
    std::optional<std::int64_t> const process = object.integer("processID");
    bool const isProcessTold = process || object.isNull("processID");
    bool const areFlagsTold = exists && isRunning && isAutolaunched && isInToolbar;
    if (!path || !version || !versionString || !areFlagsTold || !isProcessTold) return std::nullopt;
    return CopyFacts{*path, *version, *versionString, process, *exists, *isRunning, *isAutolaunched, *isInToolbar};
}

// The answer's kind as the program that asked the host noted it; nullopt for an unknown word.
std::optional<HostAnswer> answerIn(JSONObject const& object) {
    if (!object.has("answer")) return HostAnswer::Complete;
    std::optional<std::string> const word = object.text("answer");
    auto const* const row = std::ranges::find_if(Answers, [&](AnswerRow const& each) { return word == each.name; });
    return row == Answers.end() ? std::nullopt : std::optional(row->answer);
}

// Empty if all copies were read into the facts, else what is wrong.
std::string readCopies(JSONObject const& object, HostFacts& facts) {
    std::optional<std::vector<JSONObject>> const elements = object.objects("copies");
    if (!elements) return "It has no list of copies";
    facts.copies.reserve(elements->size());
    for (JSONObject const& element : *elements) {
        std::optional<CopyFacts> copy = copyIn(element);
        if (!copy) return "The copy number " + std::to_string(facts.copies.size() + 1) + " cannot be understood";
        facts.copies.push_back(std::move(*copy));
    }
    return "";
}

HostFacts factsIn(std::string const& nameOfFile, JSONObject const& object) {
    std::string const name = object.has("host") ? visibleBytes(object.text("host").value_or("")) : nameOfFile;
    if (name.empty()) return withoutCopies(nameOfFile, HostAnswer::Rubbish, "The name of the host is no text");
    if (object.integer("framekeeper") != UnderstoodForm)
        return withoutCopies(name, HostAnswer::Rubbish, "It is not what list --json of this version prints");
    std::optional<HostAnswer> const answer = answerIn(object);
    if (!answer) return withoutCopies(name, HostAnswer::Rubbish, "What it says of the answer is not known");
    bool const isComplete = *answer == HostAnswer::Complete;
    HostFacts facts = withoutCopies(name, *answer, isComplete ? "" : visibleBytes(object.text("reason").value_or("")));
    facts.gathered = visibleBytes(object.text("gathered").value_or(""));
    if (*answer == HostAnswer::Rubbish) return facts;
    bool const mayLackCopies = !isComplete && !object.has("copies");
    std::string const wrong = mayLackCopies ? "" : readCopies(object, facts);
    if (wrong.empty()) return facts;
    HostFacts rubbish = withoutCopies(name, HostAnswer::Rubbish, wrong);
    rubbish.gathered = facts.gathered;
    return rubbish;
}

std::string nameOfHost(std::string_view path) {
    std::string_view leaf = BytePath(path).leaf();
    if (leaf.size() > FactsSuffix.size() && leaf.ends_with(FactsSuffix)) leaf.remove_suffix(FactsSuffix.size());
    return visibleBytes(leaf);
}

HostFacts readHostAtPath(std::string const& path) {
    Result<FileContents> const contents = readFileAtPath(path, LargestFacts);
    if (contents.hasValue()) {
        std::vector<std::byte> const& bytes = contents.value().bytes;
        return hostFactsFrom(nameOfHost(path), {reinterpret_cast<char const*>(bytes.data()), bytes.size()});
    }
    constexpr std::array noFacts{EISDIR, EINVAL, EFBIG};
    bool const isThere = std::ranges::find(noFacts, contents.problem().code) != noFacts.end();
    HostAnswer const answer = isThere ? HostAnswer::Rubbish : HostAnswer::Never;
    return withoutCopies(nameOfHost(path), answer, visibleBytes(contents.problem().text()));
}

// Parsed facts may need many times the memory of their file. A host that exhausts the memory is listed as rubbish, and
// the others are reported.
HostFacts readHost(std::string const& path) {
    try {
        return readHostAtPath(path);
    } catch (std::bad_alloc const&) {
        return withoutCopies(nameOfHost(path), HostAnswer::Rubbish, "It is too large");
    }
}

// Whether it cannot even be seen what is at the path, since a folder above may not be entered.
bool isOutOfReach(std::string const& path) {
    Result<FileStatus> const status = fileStatusAtPath(path);
    return !status.hasValue() && status.problem().is(EACCES);
}

// The files of facts that a path stands for: those in a folder, else the path itself.
Result<std::vector<std::string>> filesOf(std::string const& path) {
    Result<std::vector<std::string>> const names = namesInFolder(path, LinkAtEnd::IsFollowed);
    if (!names.hasValue()) {
        bool const isNoFolder = names.problem().is(ENOTDIR) || names.problem().is(ENOENT);
        if (isNoFolder || isOutOfReach(path)) return std::vector<std::string>{path};
        return names.problem();
    }
    std::vector<std::string> files;
    for (std::string const& name : names.value()) {
        bool const isHidden = name.starts_with('.');
        if (!isHidden && name.ends_with(FactsSuffix)) files.push_back(BytePath(path).joined(name));
    }
    return files;
}

// Hosts sorted by name, those of one name as they were read.
void refuseSecondAnswers(std::vector<HostFacts>& hosts) {
    for (std::size_t index = 1; index < hosts.size(); ++index) {
        if (hosts[index].name != hosts[index - 1].name) continue;
        hosts[index] = withoutCopies(hosts[index].name, HostAnswer::Rubbish, "Another file tells of this host, too");
    }
}

} // namespace

char const* nameOf(HostAnswer answer) { return Answers.at(static_cast<std::size_t>(answer)).name; }

HostFacts hostFactsFrom(std::string_view name, std::string_view document) {
    bool const isEmpty = document.find_first_not_of(" \t\r\n") == std::string_view::npos;
    if (isEmpty) return withoutCopies(name, HostAnswer::Never, "Its file is empty");
    Result<JSONObject, Failure> const object = JSONObject::read(document);
    if (!object.hasValue()) return withoutCopies(name, HostAnswer::Rubbish, object.problem().reason);
    return factsIn(std::string(name), object.value());
}

Result<std::vector<HostFacts>> readHosts(std::vector<std::string> const& paths) {
    std::vector<HostFacts> hosts;
    for (std::string const& path : paths) {
        Result<std::vector<std::string>> const files = filesOf(path);
        if (!files.hasValue()) return files.problem();
        for (std::string const& file : files.value())
            hosts.push_back(readHost(file));
    }
    std::ranges::stable_sort(hosts, {}, &HostFacts::name);
    refuseSecondAnswers(hosts);
    return hosts;
}

} // namespace framekeeper
