#include "tests/faults/KnownBreaks.h"
#include <algorithm>

namespace mac::faults {

std::vector<KnownBreak> knownBreaks() {
    using enum Promise;
    using enum Action;
    return {
        // Where the file system cannot rename exclusively, an empty placeholder stays after the end of the process.
        {"trash", ItemIsWhole, Kill},
        {"put back", ItemIsWhole, Kill},
        {"copy", ItemIsWhole, Kill},
        {"move", ItemIsWhole, Kill},
        {"script", ItemIsWhole, Kill},
        // A value that the volume refuses goes to a sidecar, which inherits the access list of the folder.
        {"sidecar", NoMoreReaders, Fail},
        {"sidecar", ItemIsWhole, Fail},
        {"sidecar", AnswerIsTrue, TransferLess},
        {"second volume", NoMoreReaders, Fail},
        {"second volume", ItemIsWhole, Fail},
        {"second volume", AnswerIsTrue, Fail},
        {"second volume", NoLeftovers, Fail},
        {"second volume", NoLeftovers, Kill},
        {"copy", AnswerIsTrue, Fail},
        {"copy", NoLeftovers, Fail},
        {"duplicate", AnswerIsTrue, Fail},
        {"duplicate", NoLeftovers, Fail},
        {"move", AnswerIsTrue, Fail},
        {"move", NoLeftovers, Fail},
        {"rename", AnswerIsTrue, Fail},
        // The record of an item that was put back or erased may stay, and an item that cannot be looked at does not
        // count as left.
        {"put back", AnswerIsTrue, Fail},
        {"put back", ItemIsWhole, Fail},
        {"trash", AnswerIsTrue, Fail},
        {"delete", AnswerIsTrue, Fail},
        // Attributes and owners that the system refuses are lost in silence.
        {"write", AnswerIsTrue, Fail},
        {"write", ItemIsWhole, Fail},
        {"create a file", AnswerIsTrue, Fail},
        {"create a file", ItemIsWhole, Fail},
        {"change preferences", AnswerIsTrue, Fail},
        {"change preferences", ItemIsWhole, Fail},
        {"attribute", AnswerIsTrue, Fail},
        {"attribute", ItemIsWhole, Fail},
        {"comment", AnswerIsTrue, Fail},
        // The entry is moved aside and then removed; a failure between leaves it aside.
        {"login item", AnswerIsTrue, Fail},
        {"login item", NoLeftovers, Fail},
        {"login item", NoLeftovers, Kill},
    };
}

bool isAmong(std::vector<KnownBreak> const& known, Break const& found) {
    return std::ranges::any_of(known, [&](KnownBreak const& row) {
        return found.operation.find(row.operation) != std::string::npos && row.promise == found.finding.promise &&
               row.action == found.point.action;
    });
}

} // namespace mac::faults
