#include "tests/faults/Operations.h"
#include <algorithm>
#include <iterator>

namespace mac::faults {

std::vector<Operation> allOperations() {
    std::vector<Operation> all;
    for (auto const table : {trashOperations, transferOperations, attributeOperations, catalogOperations,
                             pathOperations, fileOperations, listOperations, scriptOperations, undoOperations}) {
        std::vector<Operation> rows = table();
        std::ranges::move(rows, std::back_inserter(all));
    }
    return all;
}

} // namespace mac::faults
