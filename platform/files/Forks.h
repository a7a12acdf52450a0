#pragma once

#include "platform/files/references/FSRef.h"

namespace mac {

// Reading the two forks of a file: the data fork, its contents, and the resource fork, wherever that is kept. A fork
// reference number may be used by one thread at a time.

// Permissions to open a fork with.
inline constexpr std::int8_t fsCurPerm = 0;
inline constexpr std::int8_t fsRdPerm = 1;

// Where the offset of a read counts from: fsAtMark reads at the mark, which is behind the byte that was read last, and
// ignores the offset; the others count from the fork's start, its end, or the mark.
inline constexpr std::uint16_t fsAtMark = 0;
inline constexpr std::uint16_t fsFromStart = 1;
inline constexpr std::uint16_t fsFromLEOF = 2;
inline constexpr std::uint16_t fsFromMark = 3;

// The end of the fork came before all of the bytes; those before it were read.
inline constexpr OSErr eofErr = -39;
// A place before the fork's start.
inline constexpr OSErr posErr = -40;
// No fork is open under the number.
inline constexpr OSErr rfNumErr = -51;
inline constexpr OSErr errFSBadForkName = -1402;
inline constexpr OSErr errFSForkNotFound = -1409;
inline constexpr OSErr errFSBadPosMode = -1412;

// Store the name of a fork: the empty name, and "RESOURCE_FORK". paramErr for a null pointer.
OSErr FSGetDataForkName(HFSUniStr255* dataForkName);
OSErr FSGetResourceForkName(HFSUniStr255* resourceForkName);

// Opens a fork for reading, with its mark at the start; other permissions are not supported. A symbolic link's data
// fork is its text; folders and what is neither file nor link have no forks. errFSForkNotFound: the file has no such
// fork. A number is -1 on failure, and otherwise at least 1; it is valid until the fork is closed.
OSErr FSOpenFork(FSRef const* ref, std::uint32_t forkNameLength, unichar const* forkName, std::int8_t permissions,
                 std::int16_t* forkRefNum);
// The size of an open fork in bytes. rfNumErr if no fork is open under the number, paramErr for a null pointer.
OSErr FSGetForkSize(std::int16_t forkRefNum, std::int64_t* forkSize);
// Closes the fork; the number may be given to another fork later. rfNumErr if no fork is open under it.
OSErr FSCloseFork(std::int16_t forkRefNum);

// Reads as many bytes as are asked for and puts the mark behind them. The actual count may be null. noErr, or eofErr if
// the fork ended before.
//
// Linux: what is asked for in small pieces is read in large ones, so that changes that another process makes meanwhile
// may show late.
OSErr FSReadFork(std::int16_t forkRefNum, std::uint16_t positionMode, std::int64_t positionOffset,
                 std::uint32_t requestCount, void* buffer, std::uint32_t* actualCount);

// Whether two open forks hold the same bytes from their starts to their ends; their marks stay. False if one of them
// cannot be read. The halves of a large fork are read by two threads, of which one is gone before the answer.
bool haveEqualBytes(std::int16_t forkRefNum, std::int16_t otherForkRefNum);

} // namespace mac
