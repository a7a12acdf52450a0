#pragma once

#include "platform/events/DescriptorContents.h"
#include "platform/events/NSAppleEventDescriptor.h"

namespace mac {

class NSAppleEventDescriptor::Body : public ObjectBody {
public:
    Body() = default;
    explicit Body(AEDesc newDesc) : desc(std::move(newDesc)) {}

    // As the system's tools print it: <NSAppleEventDescriptor: 'utxt'("x")>.
    NSString description() const override;
    id copy() const override { return adopt<NSAppleEventDescriptor>(desc); }

    AEDesc desc;
};

} // namespace mac
