#pragma once

#include "platform/applescript/language/ScriptSymbol.h"

// The codes in the standard additions' answers and arguments.

namespace mac::applescript {
class Terminology;
}

namespace mac::applescript::additions {

// Adds the keys' names to the terms.
void addKeys(Terminology& terms);

// Keys of the records that they answer, and parameters that set what these tell.
namespace keys {
inline constexpr Code AlertVolume = codeOf("alvl");
inline constexpr Code AppleScriptVersion = codeOf("siav");
inline constexpr Code BootVolume = codeOf("sibv");
inline constexpr Code ButtonReturned = codeOf("bhit");
inline constexpr Code CPUSpeed = codeOf("sics");
inline constexpr Code CPUType = codeOf("sict");
inline constexpr Code ComputerName = codeOf("sicn");
inline constexpr Code FileCreator = codeOf("asct");
inline constexpr Code GaveUp = codeOf("gavu");
inline constexpr Code HomeDirectory = codeOf("sihd");
inline constexpr Code HostName = codeOf("ldsa");
inline constexpr Code IPv4Address = codeOf("siip");
inline constexpr Code InputVolume = codeOf("invl");
inline constexpr Code LongUserName = codeOf("siln");
inline constexpr Code LongVersion = codeOf("aslv");
inline constexpr Code OutputMuted = codeOf("mute");
inline constexpr Code OutputVolume = codeOf("ouvl");
inline constexpr Code PackageFolder = codeOf("ispk");
inline constexpr Code PhysicalMemory = codeOf("sipm");
inline constexpr Code PrimaryEthernetAddress = codeOf("siea");
inline constexpr Code ShortUserName = codeOf("sisn");
inline constexpr Code ShortVersion = codeOf("assv");
inline constexpr Code SystemVersion = codeOf("sisv");
inline constexpr Code TextReturned = codeOf("ttxt");
inline constexpr Code TypeIdentifier = codeOf("utid");
inline constexpr Code UserID = codeOf("siid");
inline constexpr Code UserLocale = codeOf("siul");
} // namespace keys

// Values that a parameter may have.
namespace constants {
inline constexpr Code AsTaughtInSchool = codeOf("rosc");
inline constexpr Code Ask = codeOf("ask ");
inline constexpr Code Caution = codeOf("caut");
inline constexpr Code Critical = codeOf("criT");
inline constexpr Code CurrentApplication = codeOf("cura");
inline constexpr Code Down = codeOf("rodn");
inline constexpr Code FrontmostApplication = codeOf("egfp");
inline constexpr Code LocalDomain = codeOf("fldl");
inline constexpr Code Me = codeOf("me  ");
inline constexpr Code No = codeOf("no  ");
inline constexpr Code Stop = codeOf("stop");
inline constexpr Code SystemDomain = codeOf("flds");
inline constexpr Code ToNearest = codeOf("rone");
inline constexpr Code TowardZero = codeOf("rozr");
inline constexpr Code UTF16Text = codeOf("ut16");
inline constexpr Code Up = codeOf("roup");
inline constexpr Code UserDomain = codeOf("fldu");
inline constexpr Code Warning = codeOf("warN");
inline constexpr Code Yes = codeOf("yes ");
} // namespace constants

} // namespace mac::applescript::additions
