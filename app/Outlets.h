#pragma once

#include "app/AppControllerBody.h"
#include "platform/foundation/objects/Class.h"
#include "platform/foundation/objects/Method.h"
#include <string_view>
#include <type_traits>
#include <vector>

namespace framekeeper {

// An outlet: set by the interface file through key-value coding, read by the getter.
template <auto getter, auto field>
Property outlet(std::string_view key) {
    Property property = readOnlyProperty<getter>(key);
    property.set = [](id const& object, id const& value) {
        AppController const controller = uncheckedCast<AppController>(object);
        using Outlet = std::remove_reference_t<decltype(bodyOf(controller)->*field)>;
        bodyOf(controller)->*field = as<Outlet>(value);
    };
    return property;
}

// What the controller asks of the window's classes. A program with a window hands them in before the controller's class
// is described (registerApp); in one without, the controller has no such outlets and the toolkit is not linked.
struct WindowOutlets {
    std::vector<Property> properties{};
    // Sets the order of the table's rows.
    void (*sortTable)(AppController const& controller, NSArray const& descriptors) = [](AppController const&,
                                                                                        NSArray const&) {};
};

WindowOutlets const& windowOutlets();
void setWindowOutlets(WindowOutlets outlets);

// The order of the inventory: by version, the greatest text first, then by path without regard to case.
NSArray inventoryOrder();

} // namespace framekeeper
