#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

// The properties that the readers of outside data keep for every input. Each function takes the bytes of one input and
// returns what did not hold, or an empty text; malformed bytes are right as long as the reader refuses them. The fuzz
// targets call the functions with inputs that the fuzzer makes up, tests/fuzz/CorporaTest.cpp with the files of
// `fuzz/corpus`.

namespace mac::fuzz {

// An alias record, as it is and with the checksum that it ought to have; what was read is written.
std::string complaintAboutAlias(std::span<std::byte const> bytes);

// An AppleDouble file: read, written and read again.
std::string complaintAboutAppleDouble(std::span<std::byte const> bytes);

// An archived colour.
std::string complaintAboutArchivedColor(std::span<std::byte const> bytes);

// A property list in an attribute of a file. A list that is read must be written into another attribute and be the same
// there.
std::string complaintAboutAttributeList(std::span<std::byte const> bytes);

// An autostart entry, the command line of one, and a shell's text.
std::string complaintAboutAutostart(std::string_view bytes);

// The information file of an application, and its strings in a language. Any answer about the application is right, as
// long as all readers give the same one.
std::string complaintAboutBundle(std::span<std::byte const> bytes);

// The words that a process was called with, each ending with NUL, the first being its program: the script must be one
// of the words, and a bundle a part of its path.
std::string complaintAboutCommandLine(std::string_view bytes);

// A file's name in the first line and its contents behind it, a type identifier, a MIME type or a desktop entry.
std::string complaintAboutContentType(std::span<std::byte const> bytes);

// Dates as people and as other programs write them: a date that is written and read again must be the same.
std::string complaintAboutDateText(std::string_view bytes);

// A flat descriptor, of which an object is made. The object must be the same each time.
std::string complaintAboutDescriptorObject(std::span<std::byte const> bytes);

// A dynamic type identifier, and a tag that one is made of: both must come back as they were.
std::string complaintAboutDynamicType(std::string_view bytes);

// Text in the encoding that the first byte chooses, in UTF-8, as a file name and as UTF-16 code units: it must be the
// same after it was written and read again.
std::string complaintAboutEncoding(std::string_view bytes);

// Finder information, a resource fork with an icon in it, and an icon.
std::string complaintAboutFinderInformation(std::span<std::byte const> bytes);

// A flat descriptor: what was read is written as the same bytes, or refused with a reason.
std::string complaintAboutFlatDescriptor(std::span<std::byte const> bytes);

// A line that chooses the arguments, and a format.
std::string complaintAboutFormat(std::string_view bytes);

// What a host told of its copies, reported in both forms.
std::string complaintAboutHostFacts(std::string_view bytes);
// A report in HTML: every element that is opened must be closed in its turn.
std::string complaintAboutPage(std::string_view page);
// A report in CSV (RFC 4180): rows of 13 fields each, none of which a spreadsheet takes for a formula.
std::string complaintAboutRows(std::string_view rows);

// The contents of an image file, and a family of icons.
std::string complaintAboutImage(std::span<std::byte const> bytes);

// A desktop entry, or a list of default applications. Only that reading ends is tried.
std::string complaintAboutKeyFile(std::string_view bytes);

// The system's list of mounts: read, written and read again, and its volumes listed. Lines of another form are left
// out.
std::string complaintAboutMounts(std::string_view text);

// A number format, a line feed and a text to read numbers from.
std::string complaintAboutNumbers(std::string_view bytes);

// A path of either kind on a few volumes, made one of the other kind and back.
std::string complaintAboutPaths(std::string_view bytes);

// The file browsers' places in the form of GTK and in that of KDE: entries are taken out, put back, and one is added.
std::string complaintAboutBookmarks(std::string_view bytes);
std::string complaintAboutXBEL(std::string_view bytes);

// A predicate with two arguments to take. What is read must be written as text that makes the same predicate, and
// answer or raise what the framework raises; the reader says where bytes cease to be a predicate.
std::string complaintAboutPredicate(std::string_view bytes);

// The line of a process, and the name in one.
std::string complaintAboutProcessStatus(std::string_view text);

// A property list in one of its forms. What is read must be the same in every mutability, and survive being written
// and read in both forms that can be written.
std::string complaintAboutXML(std::span<std::byte const> bytes);
std::string complaintAboutBinary(std::span<std::byte const> bytes);
std::string complaintAboutOldStyle(std::span<std::byte const> bytes);

// The file of a remembered walk, whatever its checksum, and an index of folders alone.
std::string complaintAboutRememberedWalk(std::span<std::byte const> bytes);

// A script that is compiled and run as far as it only computes, within bounds: it must have a value or a proper error.
std::string complaintAboutScript(std::string_view bytes);

// A flat descriptor that a script makes a value of.
std::string complaintAboutScriptDescriptor(std::span<std::byte const> bytes);

// A stored script.
std::string complaintAboutStoredScript(std::span<std::byte const> bytes);

// A value of each class that scripts keep in files; the first byte chooses which.
std::string complaintAboutStoredValue(std::span<std::byte const> bytes);

// The name of an unfinished file. The state of the owner that a name tells must be known at once.
std::string complaintAboutTemporaryName(std::string_view bytes);

// What a trash tells of an item, and its sizes; what was read is written once more.
std::string complaintAboutTrashInformation(std::span<std::byte const> bytes);

// A base URL, a line feed and a URL (or path) relative to it.
std::string complaintAboutURL(std::string_view bytes);

// The file of a domain of user defaults, and arguments with NUL between them. A file that can be read keeps all its
// values when another one is added; any other file stays as it is.
std::string complaintAboutUserDefaults(std::span<std::byte const> bytes);

// The list of the user's folders: a folder in it must be an absolute path.
std::string complaintAboutUserFolderList(std::string_view bytes);

// Versions of bundles in two lines: a version that was trimmed must be the same version, and the order must be one.
std::string complaintAboutVersion(std::string_view bytes);

} // namespace mac::fuzz
