#include "coreutils/Strings.h"
#include "pathutils/AliasesAndContents.h"
#include "tests/consumer/operations/Trial.h"

// Aliases, and files compared by their contents.

namespace consumer {

using namespace mac;

namespace {

FSRef referenceTo(NSString const& path) {
    FSRef ref{};
    FSPathMakeRef(reinterpret_cast<std::uint8_t const*>(path.UTF8String().c_str()), &ref, nullptr);
    return ref;
}

void tryAliases(Trial const& trial, Places const& places) {
    NSString const file = places.file("original", "one");
    NSData const alias = pxAliasDataOfPath(file);
    trial.expect("pxAliasDataOfPath", alias.length() > 0);
    trial.expect("pxPathOfAliasData", isText(pxPathOfAliasData(alias), file.UTF8String()));
    NSData changed;
    trial.expect("pxPathOfAliasDataChangedAlias_",
                 pxPathOfAliasDataChangedAlias_(alias, &changed) != nil && changed == nil);
    MemoryHandle const handle = pxCreateHandle(alias);
    trial.expect("pxCreateHandle", handle != nullptr);
    trial.expect("pxDataWithHandle_", pxDataWithHandle_(handle).isEqualToData_(alias));
    DisposeHandle(handle);
}

} // namespace

void tryContents(Places const& places) {
    Trial const trial("pathutils/AliasesAndContents");
    tryAliases(trial, places);
    NSString const one = places.file("one", "one");
    NSString const other = places.file("other", "other");
    FSRef const first = referenceTo(one);
    FSRef const second = referenceTo(other);
    trial.expect("pxIsFork_equalToFork_dataFork_", !pxIsFork_equalToFork_dataFork_(&first, &second, YES) &&
                                                       pxIsFork_equalToFork_dataFork_(&first, &second, NO));
    trial.expect("pxIsContentsOfFile_equalToFile_", pxIsContentsOfFile_equalToFile_(&first, &first));
    trial.expect("pxPathHasEqualContentsWithPath_", !pxPathHasEqualContentsWithPath_(one, other));
    trial.expect("pxChecksumOfPath", pxChecksumOfPath(one) == pxChecksum(NSData::dataWithBytes_length_("one", 3)));
    trial.expect("pxModificationDateOfPath", pxModificationDateOfPath(one) != nil);
    trial.expect("pxExchangeFileWith_",
                 pxExchangeFileWith_(one, other) && NSData::dataWithContentsOfFile_(one).length() == 5);
}

} // namespace consumer
