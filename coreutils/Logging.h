#pragma once

#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/text/NSString.h"
#include <cstdio>

namespace mac {

// A log file of a bundle in the user's log folder. Its path is all there is to keep: each message opens the file,
// appends by one write and closes it, so that several processes may log and a crash loses nothing. All text is written
// in Mac OS Roman; a text that it cannot hold is not written at all. Failures are silent but for one message in the
// system log. Any thread, except for the operations on bundles, which are for the main thread; opening may block the
// thread for nine seconds.

// The path of the bundle's log in the user's log folder, which is created if missing (FSFindFolder): the bundle's
// "CFBundleName", followed by the suffix, which may be nil, and the extension "log". Nil for a nil receiver, if the
// folder cannot be found or created, and for a bundle without name.
// Linux: nil also if the name cannot be that of a file, because it holds a slash.
NSString pxLogFilePathWithAppendingToName_(NSBundle receiver, NSString suffix);

// Creates the bundle's log, or opens the existing one, which is emptied unless it is appended to. With auxiliary
// information a header line is written: time stamp, the bundle's name, and its "CFBundleShortVersionString" with the
// "CFBundleVersion" in parentheses. Answers the path; nil for a nil receiver, if there is no path or if the file cannot
// be opened.
NSString pxCreateLogFileWithAppendingToName_appendingToFile_includeAuxiliaryInformation_(
    NSBundle receiver, NSString suffix, BOOL appending, BOOL includesAuxiliaryInformation);

// Opens the file at the path, creates it if it is missing and empties it unless it is appended to. Tries ten times, one
// second apart. The caller closes the stream. Null for a nil receiver, if all trials failed, and for a path without
// file-system representation, which the system log is told of.
// Linux: pipes and devices are opened without waiting; a pipe that nothing reads cannot be opened.
// As with every stream, writing to a pipe whose reader has ended since raises SIGPIPE, which ends a program that
// neither ignores nor blocks it.
std::FILE* pxOpenLogFileForPathWithAppending_(NSString receiver, BOOL appending);

// Appends the formatted message to the log at the path as it is, without time stamp and newline. A nil format raises
// NSInvalidArgumentException; a nil receiver logs nothing.
void pxLog_(NSString receiver, NSString format);
// Formats the arguments first, as NSString::stringWithFormat_ does.
template <class First, class... Arguments>
void pxLog_(NSString receiver, NSString format, First const& first, Arguments const&... arguments);

// With the auxiliary flag, appends a whole line: time stamp, a space, the formatted message and a newline. Without it
// appends the message as pxLog_ does, without newline (deliberately so).
void pxLogAux_(NSString receiver, BOOL auxiliary, NSString format);
// Formats the arguments first, as NSString::stringWithFormat_ does.
template <class First, class... Arguments>
void pxLogAux_(NSString receiver, BOOL auxiliary, NSString format, First const& first, Arguments const&... arguments);

// The format with the array's first twenty elements as its arguments, each of them an object; a directive without
// element gets nil, which prints as (null). Nil for a nil receiver.
NSString pxFormattedStringWithArguments_(NSString receiver, NSArray arguments);

// How a message is appended: as it is, or as a whole line that begins with a time stamp.
enum class LogLine { IsMessageAlone, HasTimeStamp };

// Appends a formatted message; for the templates of this header.
void appendToLog(NSString const& path, LogLine line, NSString const& message);

template <class First, class... Arguments>
void pxLog_(NSString receiver, NSString format, First const& first, Arguments const&... arguments) {
    if (receiver == nil) return;
    appendToLog(receiver, LogLine::IsMessageAlone, NSString::stringWithFormat_(format, first, arguments...));
}

template <class First, class... Arguments>
void pxLogAux_(NSString receiver, BOOL auxiliary, NSString format, First const& first, Arguments const&... arguments) {
    if (receiver == nil) return;
    appendToLog(receiver, auxiliary ? LogLine::HasTimeStamp : LogLine::IsMessageAlone,
                NSString::stringWithFormat_(format, first, arguments...));
}

} // namespace mac
