#include "platform/processes/ProcessBundles.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/processes/Processes.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <algorithm>
#include <fcntl.h>
#include <string_view>

namespace mac {

namespace {

// "/Contents/Linux/A" of a program in a bundle; empty for others.
std::string_view placeInBundle(std::string_view program) {
    std::string_view const bundle = bundleHolding(program);
    return bundle.empty() ? bundle : program.substr(bundle.size());
}

std::optional<ItemIdentity> identityAt(std::string const& path) {
    Result<IdentifiedItem> const item = identifyAtPath(path, LinkAtEnd::IsFollowed);
    return item.hasValue() ? std::optional(item.value().identity) : std::nullopt;
}

// The present path of a bundle that was renamed within its folder.
std::optional<std::string> newNameOf(std::string const& bundlePath, ItemIdentity const& bundle) {
    BytePath const parent(BytePath(bundlePath).parent());
    Result<FileDescriptor> const folder = openPath(parent.bytes(), O_RDONLY | O_DIRECTORY);
    if (!folder.hasValue()) return std::nullopt;
    Result<std::vector<FolderEntry>> const entries = entriesOf(folder.value());
    if (!entries.hasValue()) return std::nullopt;
    for (FolderEntry const& entry : entries.value()) {
        if (entry.inode != bundle.inode) continue;
        Result<IdentifiedItem> const item = identify(folder.value(), entry.name);
        if (item.hasValue() && item.value().identity == bundle) return parent.joined(entry.name);
    }
    return std::nullopt;
}

// A bundle that is younger than the program cannot be the one that the program came with.
bool mayHaveBroughtProgram(ItemIdentity const& bundle, ItemIdentity const& program) {
    return bundle.isLasting() && program.isLasting() && bundle.birth <= program.birth;
}

NSDictionary informationAt(std::string const& bundlePath) {
    NSBundle const bundle = NSBundle::bundleWithPath_(NSString::stringWithFileSystemRepresentation_(bundlePath));
    NSMutableDictionary const information = NSMutableDictionary::dictionary();
    auto const add = [&](NSString const& key, id const& value) {
        NSString const text = as<NSString>(value);
        if (text != nil) information.setObject_forKey_(text, key);
    };
    add(kCFBundleIdentifierKey, bundle.bundleIdentifier());
    add(kCFBundleNameKey, bundle.objectForInfoDictionaryKey_(kCFBundleNameKey));
    add("FileType", bundle.objectForInfoDictionaryKey_("CFBundlePackageType"));
    add("FileCreator", bundle.objectForInfoDictionaryKey_("CFBundleSignature"));
    return NSDictionary::dictionaryWithDictionary_(information);
}

} // namespace

// The file of a script that is, or was last, in a bundle, or that is there outside of any.
std::optional<ProgramFile> ProcessBundles::scriptFile(RunningProcess const& process, std::string const& script,
                                                      Seen const* seen) {
    std::optional<std::string> const path = resolvedFile(script);
    std::optional<ItemIdentity> const identity = path ? identityAt(*path) : std::nullopt;
    bool const isInBundle = identity && !bundleHolding(*path).empty();
    if (identity && (seen ? *identity == seen->program.identity : !isInBundle))
        return ProgramFile{*path, *identity, true};
    // The arguments tell what was called once, the interpreter's open file tells what runs.
    std::string_view const place = placeInBundle(path ? *path : script);
    // Without a place to compare with, no file that it has open could be the one.
    if (!seen && place.empty()) return identity ? std::optional(ProgramFile{*path, *identity, true}) : std::nullopt;
    std::optional<ProgramFile> const open = openFileInBundle(process, [&](ProgramFile const& file) {
        return seen ? file.identity == seen->program.identity : placeInBundle(file.path) == place;
    });
    if (open) return open;
    if (!seen) return identity ? std::optional(ProgramFile{*path, *identity, true}) : std::nullopt;
    std::string const lastBundle(bundleHolding(seen->program.path));
    ProgramFile last{seen->program.path, seen->program.identity, false};
    std::optional<std::string> const renamed = newNameOf(lastBundle, seen->bundle);
    if (renamed) last.path = *renamed + std::string(placeInBundle(last.path));
    last.isThere = identityAt(last.path) == last.identity;
    return last;
}

ProcessBundles::Seen const* ProcessBundles::seenOf(ProcessIdentity const& process, ItemIdentity const& executable,
                                                   std::string const& script) {
    auto const found = m_seen.find(process);
    if (found == m_seen.end()) return nullptr;
    if (found->second.executable == executable && found->second.script == script) return &found->second;
    m_seen.erase(found);
    return nullptr;
}

ProcessBundle ProcessBundles::bundleOf(RunningProcess const& process) {
    std::optional<std::string> const script = calledScript(process);
    if (!script && bundleHolding(process.executable).empty()) return {.program = process.executable};
    std::optional<ProgramFile> const executable = executableFileOf(process);
    if (!executable) return {.program = process.executable, .path = std::string(bundleHolding(process.executable))};
    Seen const* const seen = seenOf(process.identity, executable->identity, script.value_or(""));
    std::optional<ProgramFile> const program = script ? scriptFile(process, *script, seen) : executable;
    // What was read of a new process is valid only while the process runs.
    if (!program || (!seen && !runningProcess(process.identity))) return {.program = process.executable};
    ProcessBundle known{.program = program->path, .path = std::string(bundleHolding(program->path))};
    if (known.path.empty()) return known;
    std::optional<ItemIdentity> const bundle = identityAt(known.path);
    // Without the program the bundle at the path is the process's own if it was seen as such; if none was seen, if it
    // is as old as the program.
    bool const isOwn = bundle && (program->isThere || (seen ? bundle->isLasting() && *bundle == seen->bundle
                                                            : mayHaveBroughtProgram(*bundle, program->identity)));
    if (isOwn) known.information = informationAt(known.path);
    if (known.information.objectForKey_(kCFBundleIdentifierKey) == nil) {
        if (seen) known.information = seen->information;
        return known;
    }
    m_seen[process.identity] = {executable->identity, script.value_or(""), *program, *bundle, known.information};
    return known;
}

void ProcessBundles::keepOnly(std::vector<ProcessIdentity> const& processes) {
    std::erase_if(m_seen, [&](auto const& entry) { return !std::ranges::binary_search(processes, entry.first); });
}

} // namespace mac
