#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/system/Result.h"
#include <optional>
#include <span>
#include <string_view>

namespace mac {

// The table of keys whose value, an array, the desktop keeps in a form of its own. What the desktop has no form for
// stays under the key in the domain's file; readers see both as one array. Another such key is one row. Main thread.

struct NativeItems {
    // The whole array.
    NSArray items{};
    // Why something that may hold items could not be read, for people; synchronising then fails, and the items that
    // could be read are answered all the same.
    std::optional<Failure> problem{};
};

struct NativeWriting {
    // The elements that the desktop has no form for, in their order: the domain's file keeps them.
    NSArray kept{};
    // What could not be written, for people; the file then keeps what it had.
    std::optional<Failure> problem{};

    bool isDone() const { return !problem; }
};

struct NativeStore {
    std::string_view domain;
    std::string_view key;
    // Reads what the desktop has anew. `kept` are the elements in the domain's file, never nil; they belong into the
    // array where the store puts them. The desktop's elements are new objects at each call.
    NativeItems (*read)(NSArray const& kept);
    // Makes the desktop's items those of the array: removes those that the last read answered and that are not in it,
    // adds those that it has more, and touches no others.
    NativeWriting (*write)(NSArray const& items);
};

std::span<NativeStore const> nativeStores();

// The error for people, in the program's language: .config/autostart: Permission denied.
Failure failureForPeople(SystemError const& error);

} // namespace mac
