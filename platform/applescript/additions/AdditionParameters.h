#pragma once

#include "platform/applescript/language/ScriptSymbol.h"

// The codes of the standard additions' parameters that no application shares, each by the label that scripts write.

namespace mac::applescript::additions::parameters {

inline constexpr Code AdministratorPrivileges = codeOf("badm");
inline constexpr Code AlteringLineEndings = codeOf("alen");
inline constexpr Code AsAlert = codeOf("as A");
inline constexpr Code AsInFile = codeOf("as  ");
inline constexpr Code Before = codeOf("rdbf");
inline constexpr Code Buttons = codeOf("btns");
inline constexpr Code CancelButton = codeOf("cbtn");
inline constexpr Code CancelButtonName = codeOf("cnbt");
inline constexpr Code DefaultAnswer = codeOf("dtxt");
inline constexpr Code DefaultButton = codeOf("dflt");
inline constexpr Code DefaultColor = codeOf("dcol");
inline constexpr Code DefaultItems = codeOf("inSL");
inline constexpr Code DefaultLocation = codeOf("dflc");
inline constexpr Code DefaultName = codeOf("dfnm");
inline constexpr Code EmptySelectionAllowed = codeOf("empL");
inline constexpr Code FolderCreation = codeOf("crfl");
inline constexpr Code ForBytes = codeOf("nmwr");
inline constexpr Code ForCount = codeOf("rdfr");
inline constexpr Code From = codeOf("from");
inline constexpr Code FromByte = codeOf("rdfm");
inline constexpr Code GivingUpAfter = codeOf("givu");
inline constexpr Code HiddenAnswer = codeOf("htxt");
inline constexpr Code In = codeOf("fpth");
inline constexpr Code InText = codeOf("psin");
inline constexpr Code Message = codeOf("mesS");
inline constexpr Code OKButtonName = codeOf("okbt");
inline constexpr Code OfText = codeOf("psof");
inline constexpr Code OfType = codeOf("ftyp");
inline constexpr Code Password = codeOf("RApw");
inline constexpr Code Pitch = codeOf("PTCH");
inline constexpr Code Replacing = codeOf("savo");
inline constexpr Code Rounding = codeOf("dire");
inline constexpr Code SavingTo = codeOf("stof");
inline constexpr Code SpeakingRate = codeOf("RATE");
inline constexpr Code StartingAt = codeOf("wrat");
inline constexpr Code Subtitle = codeOf("subt");
inline constexpr Code ToByte = codeOf("rdto");
inline constexpr Code ToEnd = codeOf("set2");
inline constexpr Code ToFile = codeOf("refn");
inline constexpr Code Until = codeOf("rdut");
inline constexpr Code UserName = codeOf("RAun");
inline constexpr Code Using = codeOf("VOIC");
inline constexpr Code UsingDelimiters = codeOf("deli");
inline constexpr Code Volume = codeOf("VOLU");
inline constexpr Code WaitingUntilCompletion = codeOf("wfsp");
inline constexpr Code WithIcon = codeOf("disp");
inline constexpr Code WithParameters = codeOf("plst");
inline constexpr Code WithSeed = codeOf("seed");
inline constexpr Code WritePermission = codeOf("perm");

} // namespace mac::applescript::additions::parameters
