#pragma once

#include "tests/faults/Fixture.h"
#include <functional>
#include <string>
#include <vector>

// The operations that change the disk, each in one row of a table: what there is before, what is done, and what may be
// found after a failure. A new operation is a row.

namespace mac::faults {

// Where an item is before and after. Whatever happens, it is whole at one of the two places. An empty place: the item
// does not exist then.
struct Item {
    std::string before{};
    std::string after{};
};

// What a failure may leave behind.
enum class Failure {
    // All as it was, or all done.
    LeavesAllOrNothing,
    // Several items or steps, each of which is done or not.
    LeavesSomeDone,
    // Several attributes, permissions or dates of an item, each of which is set or not. Contents are whole.
    LeavesSomeFields,
    // Each field is set or not if the process ends or a call goes on failing; all or nothing after a single failure.
    LeavesSomeFieldsIfCut,
};

enum class Needs {
    OneVolume,
    TwoVolumes,
    // A file system that keeps attributes.
    Attributes,
    // A file system that exchanges two names in one step.
    ExchangedNames,
};

enum class Flushing {
    BeforeNaming,
    // The new item may be incomplete after a power loss, since the original stays.
    Later,
};

struct Operation {
    // Unique; a fault point is found again by it.
    std::string name{};
    Flushing flushing{Flushing::BeforeNaming};
    // Makes the items that the operation needs.
    std::function<void(Fixture const&)> prepare{};
    // Answers whether the operation said that it was done. Called in a process of its own.
    std::function<bool(Fixture const&)> run{};
    // Whether the result is there, as the library itself reads it, for operations that may reach it in several ways.
    // The disk is compared in any case.
    std::function<bool(Fixture const&)> isReached{};
    std::vector<Item> items{};
    // An item that is replaced in its place and then deleted; see Circumstances::replacesInSteps.
    std::string replaced{};
    // Names which another process exchanges with a link to the canary, which stays untouched.
    std::vector<std::string> exchanged{};
    // Folders on the way to the items, exchanged in the same way. A path may lead through a link, so the item of the
    // same name in the canary may be what is meant; it stays whole, and all else there untouched.
    std::vector<std::string> exchangedWays{};
    Failure failure{Failure::LeavesAllOrNothing};
    Needs needs{Needs::OneVolume};
    // Done before the process is copied for each fault point, to save time.
    std::function<void(Fixture const&)> warmUp{};
};

std::vector<Operation> trashOperations();
std::vector<Operation> transferOperations();
std::vector<Operation> attributeOperations();
std::vector<Operation> catalogOperations();
std::vector<Operation> pathOperations();
std::vector<Operation> fileOperations();
std::vector<Operation> listOperations();
std::vector<Operation> scriptOperations();
std::vector<Operation> undoOperations();
// Operations that break each promise, for the campaign's own tests.
std::vector<Operation> carelessOperations();

// Copies a file of the canary into the folder, as the next operation there.
void copyIntoFolder(Fixture const& fixture, std::string const& folder);

// All operations but the careless ones.
std::vector<Operation> allOperations();

} // namespace mac::faults
