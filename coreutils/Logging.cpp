#include "coreutils/Logging.h"
#include "coreutils/ArrayLookups.h"
#include "platform/files/SpecialFolders.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/running/NSThread.h"
#include "platform/foundation/text/Format.h"
#include "platform/system/LocalTime.h"
#include "platform/system/LogFile.h"
#include "scripting/FileReferences.h"
#include <optional>
#include <vector>

namespace mac {

namespace {

constexpr NSUInteger MostFormatArguments = 20;

// Null if it cannot be opened.
OwnedStream openLog(NSString const& path, OldLogLines oldLines) {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    if (!bytes) {
        char const* const missingPath{};
        NSLog("Unable to open logfile: %s", missingPath);
        return {};
    }
    auto const pause = [](std::chrono::duration<double> duration) {
        NSThread::sleepUntilDate_(NSDate::dateWithTimeIntervalSinceNow_(duration.count()));
    };
    return openLogFile(*bytes, oldLines, pause).valueOr({});
}

// nullopt for what Mac OS Roman cannot hold.
std::optional<std::string> romanBytes(NSString const& text) {
    NSData const data = text.dataUsingEncoding_(NSMacOSRomanStringEncoding);
    if (data == nil) return std::nullopt;
    return std::string(reinterpret_cast<char const*>(data.bytes()), data.length());
}

std::string nowStamp() { return localTimeStamp(std::chrono::system_clock::now()); }

NSString nameOfBundle(NSBundle const& bundle) {
    return as<NSString>(bundle.objectForInfoDictionaryKey_("CFBundleName"));
}

std::optional<std::string> headerLine(NSBundle const& bundle) {
    NSString const version =
        NSString::stringWithFormat_("%@ (%@)", bundle.objectForInfoDictionaryKey_("CFBundleShortVersionString"),
                                    bundle.objectForInfoDictionaryKey_("CFBundleVersion"));
    return romanBytes(NSString::stringWithFormat_("%s %@ %@\n", nowStamp(), nameOfBundle(bundle), version));
}

} // namespace

NSString pxLogFilePathWithAppendingToName_(NSBundle receiver, NSString suffix) {
    NSString const name = nameOfBundle(receiver);
    if (name == nil) return nil;
    NSString const leaf = suffix == nil ? name : name.stringByAppendingString_(suffix);
    if (leaf.length() == 0 || leaf.rangeOfString_("/").location != NSNotFound) return nil;
    FSRef folder{};
    if (FSFindFolder(kUserDomain, kLogsFolderType, YES, &folder) != noErr) return nil;
    return KRCPathWithFSRef_(&folder).stringByAppendingPathComponent_(leaf.stringByAppendingPathExtension_("log"));
}

NSString pxCreateLogFileWithAppendingToName_appendingToFile_includeAuxiliaryInformation_(
    NSBundle receiver, NSString suffix, BOOL appending, BOOL includesAuxiliaryInformation) {
    NSString const path = pxLogFilePathWithAppendingToName_(receiver, suffix);
    if (path == nil) return nil;
    OwnedStream stream = openLog(path, appending ? OldLogLines::AreKept : OldLogLines::AreDropped);
    if (!stream) return nil;
    std::optional<std::string> const header = headerLine(receiver);
    // A failed write is silent, as everywhere in this log.
    if (includesAuxiliaryInformation && header) (void)appendAndClose(std::move(stream), *header).isDone();
    return path;
}

std::FILE* pxOpenLogFileForPathWithAppending_(NSString receiver, BOOL appending) {
    if (receiver == nil) return {};
    return openLog(receiver, appending ? OldLogLines::AreKept : OldLogLines::AreDropped).release();
}

void pxLog_(NSString receiver, NSString format) {
    if (receiver != nil) appendToLog(receiver, LogLine::IsMessageAlone, NSString::stringWithFormat_(format));
}

void pxLogAux_(NSString receiver, BOOL auxiliary, NSString format) {
    if (receiver == nil) return;
    appendToLog(receiver, auxiliary ? LogLine::HasTimeStamp : LogLine::IsMessageAlone,
                NSString::stringWithFormat_(format));
}

NSString pxFormattedStringWithArguments_(NSString receiver, NSArray arguments) {
    if (receiver == nil) return nil;
    std::vector<FormatArgument> values;
    values.reserve(MostFormatArguments);
    for (NSUInteger index = 0; index < MostFormatArguments; ++index)
        values.emplace_back(pxObjectAtIndex_(arguments, index));
    return formatString(receiver, values);
}

void appendToLog(NSString const& path, LogLine line, NSString const& message) {
    std::optional<std::string> bytes = romanBytes(message);
    if (!bytes) return;
    OwnedStream stream = openLog(path, OldLogLines::AreKept);
    if (!stream) return;
    if (line == LogLine::HasTimeStamp) bytes = nowStamp() + " " + *bytes + "\n";
    (void)appendAndClose(std::move(stream), *bytes).isDone();
}

} // namespace mac
