#include "platform/applescript/additions/Additions.h"
#include <algorithm>
#include <array>

namespace mac::applescript {

namespace {

// What only a person at the screen could answer.
Value refuseInteraction(Evaluator& /*evaluator*/, CommandArguments const& /*arguments*/) {
    throw plainError(errors::NoUserInteraction);
}

struct AdditionRow {
    EventCode event;
    Addition addition;
    // Touches the computer: refused to a script that may only compute.
    bool hasEffects;
};

constexpr auto Rows = std::to_array<AdditionRow>({
    {eventOf("sysooffs"), additions::offset, false},       {eventOf("sysorond"), additions::round, false},
    {eventOf("sysorand"), additions::randomNumber, false}, {eventOf("sysontoc"), additions::asciiCharacter, false},
    {eventOf("sysocton"), additions::asciiNumber, false},  {eventOf("sysolstr"), additions::localizedString, false},
    {eventOf("misccurd"), additions::currentDate, false},  {eventOf("sysogtmt"), additions::timeToGMT, false},
    {eventOf("ascrcmnt"), additions::log, false},          {eventOf("sysodela"), additions::delay, true},
    {eventOf("sysodsct"), additions::runScript, false},    {eventOf("fndrgstl"), additions::systemAttribute, true},
    {eventOf("sysosigt"), additions::systemInfo, true},    {eventOf("earsffdr"), additions::pathTo, true},
    {eventOf("sysoexec"), additions::doShellScript, true}, {eventOf("sysonfo4"), additions::infoFor, true},
    {eventOf("earslfdr"), additions::listFolder, true},    {eventOf("rdwropen"), additions::openForAccess, true},
    {eventOf("rdwrclos"), additions::closeAccess, true},   {eventOf("rdwrread"), additions::read, true},
    {eventOf("rdwrwrit"), additions::write, true},         {eventOf("rdwrgeof"), additions::getEnd, true},
    {eventOf("rdwrseof"), additions::setEnd, true},        {eventOf("sysodlog"), additions::displayDialog, true},
    {eventOf("sysodisA"), additions::displayAlert, true},  {eventOf("sysonotf"), additions::displayNotification, true},
    {eventOf("sysostdf"), refuseInteraction, false},       {eventOf("sysostfl"), refuseInteraction, false},
    {eventOf("sysonwfl"), refuseInteraction, false},       {eventOf("gtqpchlt"), additions::chooseFromList, true},
    {eventOf("sysobeep"), additions::beep, true},          {eventOf("sysottos"), additions::say, true},
    {eventOf("JonsgClp"), additions::theClipboard, true},  {eventOf("JonspClp"), additions::setTheClipboard, true},
    {eventOf("earslvol"), additions::listDisks, true},     {eventOf("sysochcl"), additions::chooseColor, true},
    {eventOf("sysochur"), additions::chooseURL, true},     {eventOf("sysoppcb"), additions::chooseApplication, true},
    {eventOf("aevtstvl"), additions::setVolume, true},     {eventOf("sysogtvl"), additions::volumeSettings, true},
    {eventOf("sysoload"), additions::loadScript, true},    {eventOf("JonsiClp"), additions::clipboardInfo, true},
    {eventOf("sysostor"), additions::storeScript, true},   {eventOf("GURLGURL"), refuseInteraction, false},
});

} // namespace

Addition additionFor(EventCode event) {
    auto const* const found = std::ranges::find(Rows, event, &AdditionRow::event);
    return found == Rows.end() ? nullptr : found->addition;
}

bool hasEffects(EventCode event) {
    auto const* const found = std::ranges::find(Rows, event, &AdditionRow::event);
    return found != Rows.end() && found->hasEffects;
}

} // namespace mac::applescript
