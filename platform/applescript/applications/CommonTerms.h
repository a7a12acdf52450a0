#pragma once

#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/Terminology.h"
#include <array>

// Commands that several applications have: their names, codes and parameters.

namespace mac::applescript::common {

// The core suite's commands about any object, which reach other programs and come from them as these events.
inline constexpr EventCode GetEvent = eventOf("coregetd");
inline constexpr EventCode SetEvent = eventOf("coresetd");
inline constexpr EventCode CountEvent = eventOf("corecnte");
inline constexpr EventCode ExistsEvent = eventOf("coredoex");

inline constexpr auto MakeParameters = std::to_array<CommandParameter>({
    {.label = u"new", .code = codes::NewClassParameter},
    {.label = u"at", .code = codes::InsertionParameter},
    {.label = u"to", .code = codes::ToParameter},
    {.label = u"with data", .code = codes::DataParameter},
    {.label = u"with properties", .code = codes::PropertiesParameter},
});
inline constexpr auto DestinationParameters = std::to_array<CommandParameter>({
    {.label = u"to", .code = codes::InsertionParameter},
    {.label = u"replacing", .code = codes::ReplacingParameter, .isBoolean = true},
    {.label = u"routing suppressed", .code = codeOf("rout"), .isBoolean = true},
    {.label = u"exact copy", .code = codeOf("exct"), .isBoolean = true},
});

inline constexpr CommandTerm Make{
    .name = u"make", .code = eventOf("corecrel"), .direct = DirectParameter::Optional, .parameters = MakeParameters};
inline constexpr CommandTerm Delete{
    .name = u"delete", .code = eventOf("coredelo"), .direct = DirectParameter::Optional};
inline constexpr CommandTerm Move{.name = u"move",
                                  .code = eventOf("coremove"),
                                  .direct = DirectParameter::Optional,
                                  .parameters = DestinationParameters};
inline constexpr CommandTerm Duplicate{.name = u"duplicate",
                                       .code = eventOf("coreclon"),
                                       .direct = DirectParameter::Optional,
                                       .parameters = DestinationParameters};
inline constexpr CommandTerm Select{
    .name = u"select", .code = eventOf("miscslct"), .direct = DirectParameter::Required};
inline constexpr CommandTerm Reveal{
    .name = u"reveal", .code = eventOf("miscmvis"), .direct = DirectParameter::Required};
inline constexpr CommandTerm Open{.name = u"open", .code = eventOf("aevtodoc"), .direct = DirectParameter::Required};
inline constexpr CommandTerm Restart{.name = u"restart", .code = eventOf("fndrrest")};
inline constexpr CommandTerm ShutDown{.name = u"shut down", .code = eventOf("fndrshut")};
inline constexpr CommandTerm Sleep{.name = u"sleep", .code = eventOf("fndrslep")};

// Commands that the language has the words for.
inline constexpr CommandTerm Activate{.name = {}, .code = eventOf("miscactv")};
inline constexpr CommandTerm Launch{.name = {}, .code = eventOf("ascrnoop")};
inline constexpr CommandTerm Run{.name = {}, .code = eventOf("aevtoapp")};
inline constexpr CommandTerm Reopen{.name = {}, .code = eventOf("aevtrapp")};
inline constexpr CommandTerm Quit{.name = {}, .code = eventOf("aevtquit")};

} // namespace mac::applescript::common
