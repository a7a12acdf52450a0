#pragma once

#include "platform/system/Result.h"
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

namespace mac {

// A file that several processes write lines to. Any thread.

struct StreamCloser {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using OwnedStream = std::unique_ptr<std::FILE, StreamCloser>;

enum class OldLogLines { AreKept, AreDropped };

// Opens the file at the path (bytes) for appending, also when its old lines are dropped, so that two processes that
// begin one log do not write over each other; creates it if it is missing. As with fopen a symbolic link is followed,
// also one to a missing file, and pipes and devices are opened: but an opening does not wait for a reader, so that a
// pipe without one is a failure (ENXIO), and what a full pipe does not take is lost.
//
// A failure, whatever its reason, is tried again, ten times in all with a pause of one second between them, since a
// short-lived lock or a folder that is just being created may be in the way. `pause` sleeps for the duration; the last
// failure is the answer.
Result<OwnedStream> openLogFile(std::string const& path, OldLogLines oldLines,
                                std::function<void(std::chrono::milliseconds)> const& pause);

// Appends the bytes with a single write of the system, whatever their size, so that they stay together between those of
// other processes, and closes the file. Fails if not all could be written: with EPIPE, and without the signal, for a
// pipe whose reader has ended.
Result<void> appendAndClose(OwnedStream stream, std::string const& bytes);

} // namespace mac
