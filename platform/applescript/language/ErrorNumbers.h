#pragma once

#include <cstdint>
#include <string>

namespace mac::applescript {

// The numbers that the engine itself uses.
namespace errors {
inline constexpr std::int32_t DiskFull = -34;
inline constexpr std::int32_t InputOutput = -36;
inline constexpr std::int32_t EndOfFile = -39;
inline constexpr std::int32_t FileNotFound = -43;
inline constexpr std::int32_t FileNotOpen = -38;
inline constexpr std::int32_t FileAlreadyOpen = -49;
inline constexpr std::int32_t Parameter = -50;
inline constexpr std::int32_t FilePermission = -54;
inline constexpr std::int32_t NotOpenForWriting = -61;
inline constexpr std::int32_t OutOfMemory = -108;
inline constexpr std::int32_t FolderNotFound = -120;
inline constexpr std::int32_t ResourceNotFound = -192;
inline constexpr std::int32_t UserCanceled = -128;
inline constexpr std::int32_t CannotCoerce = -1700;
inline constexpr std::int32_t MissingParameter = -1701;
inline constexpr std::int32_t CorruptData = -1702;
inline constexpr std::int32_t NotUnderstood = -1708;
inline constexpr std::int32_t TimedOut = -1712;
inline constexpr std::int32_t NoUserInteraction = -1713;
inline constexpr std::int32_t InvalidIndex = -1719;
inline constexpr std::int32_t InvalidRange = -1720;
inline constexpr std::int32_t ParametersDoNotMatch = -1721;
inline constexpr std::int32_t AccessNotAllowed = -1723;
inline constexpr std::int32_t CannotGet = -1728;
inline constexpr std::int32_t UserError = -2700;
inline constexpr std::int32_t CannotMakeClass = -2710;
inline constexpr std::int32_t DivisionByZero = -2701;
inline constexpr std::int32_t NumberTooLarge = -2702;
inline constexpr std::int32_t StackOverflow = -2706;
inline constexpr std::int32_t ValueTooLarge = -2708;
inline constexpr std::int32_t BothConsiderAndIgnore = -2720;
inline constexpr std::int32_t CannotGoAfter = -2740;
inline constexpr std::int32_t Expected = -2741;
inline constexpr std::int32_t ParameterTwice = -2750;
inline constexpr std::int32_t PropertyTwice = -2751;
inline constexpr std::int32_t HandlerTwice = -2752;
inline constexpr std::int32_t VariableNotDefined = -2753;
inline constexpr std::int32_t LocalAndGlobal = -2754;
inline constexpr std::int32_t ExitOutsideRepeat = -2755;
inline constexpr std::int32_t IllegalParameter = -2761;
inline constexpr std::int32_t NoResult = -2763;
inline constexpr std::int32_t RunHandlerTwice = -2789;
inline constexpr std::int32_t PrivilegeViolation = -10004;
inline constexpr std::int32_t CannotSet = -10006;
inline constexpr std::int32_t CannotSetAccess = -10003;
inline constexpr std::int32_t NotOfThisClass = -10010;
inline constexpr std::int32_t NotSingle = -10014;
inline constexpr std::int32_t CannotPutThere = -10024;
inline constexpr std::int32_t InvalidDate = -30720;
} // namespace errors

// What an error of this number says when nothing is known of what it is about.
std::u16string messageOfNumber(std::int32_t number);

} // namespace mac::applescript
