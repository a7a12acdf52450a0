#pragma once

#include "platform/applescript/NSAppleScript.h"
#include <initializer_list>

namespace mac {

// Runs scripts and their handlers, and escapes text to put into them. Each run blocks the calling thread, which is the
// main one, until the script ends. An error pointer may be null; it receives a brief message of the error, and nil
// after a run without one. A nil receiver answers nil and stores nothing.

// Compiles and runs the source and returns the result as text; nil after an error, which is not reported, and for a
// result that has no text, such as a list of several items.
NSString pxExecuteAsAppleScript(NSString receiver);
// Compiles and runs the source as pxExecuteAsAppleScript does and stores the error's message.
NSString pxExecuteAsAppleScript_(NSString receiver, NSString* error);

// The source's result as pxObject makes one: a string, number, array, dictionary, the data of what else there is;
// nil after an error, and empty data for a script without a result.
id pxExecuteAsAppleScript2_(NSString receiver, NSString* error);

// Runs the command in the shell and answers what it wrote; nil when it failed. YES asks the user for an administrator's
// rights first. The command stands in a script's literal as it is: its backslashes and double quotes are escaped by the
// caller (pxStringByEscapingDoubleQuotes).
NSString pxExecuteAsShellScriptWithAdminPrivs_(NSString receiver, BOOL asksForAdministrator);

// The text between single quotes, fit to be one word of a shell's command. It stands in a script's literal as it is, so
// that one holding a double quote answers nil.
NSString pxQuotedForm(NSString receiver);

// The text fit for the inside of a script's literal: backslashes are doubled, then double quotes get one.
NSString pxStringByEscapingDoubleQuotes(NSString receiver);
// The text with its single quotes escaped; double quotes stay as they are.
NSString pxStringByEscapingSingleQuotes(NSString receiver);

// Calls a handler of the script with a list of parameters, none for a nil list, and answers its result as pxObject
// makes one; nil after an error. The name reaches the script in lower case.
id pxExecuteHandler_withParameters_error_(NSAppleScript receiver, NSString handler, NSAppleEventDescriptor parameters,
                                          NSString* error);

// Calls the handler with the parameters one by one, up to the first nil: a number as its integer, without its fraction;
// text; a descriptor as it is. For any other object it logs the parameter's position, counted from 1, calls nothing,
// leaves the error alone and answers nil.
id pxExecuteHandler_error_withParameters_(NSAppleScript receiver, NSString handler, NSString* error,
                                          std::initializer_list<id> parameters);
// A message sent by selector carries the parameters in an array.
id pxExecuteHandler_error_withParameters_(NSAppleScript receiver, NSString handler, NSString* error,
                                          NSArray parameters);

} // namespace mac
