#pragma once

#include "platform/applescript/language/ScriptSymbol.h"

// The codes of the dictionaries that more than one place means, each by one name: classes, properties, and parameters
// of commands. A code that only its own row means stands in that row.

namespace mac::applescript::codes {

inline constexpr Code AliasFile = codeOf("alia");
inline constexpr Code AliasType = codeOf("alis");
inline constexpr Code AliasListType = codeOf("alst");
inline constexpr Code Application = codeOf("capp");
inline constexpr Code ApplicationFile = codeOf("appf");
inline constexpr Code ClassType = codeOf("pcls");
inline constexpr Code ConstantType = codeOf("enum");
inline constexpr Code Container = codeOf("ctnr");
inline constexpr Code BooleanType = codeOf("bool");
inline constexpr Code DateType = codeOf("ldt ");
inline constexpr Code Disk = codeOf("cdis");
inline constexpr Code DiskItem = codeOf("ditm");
inline constexpr Code DocumentFile = codeOf("docf");
inline constexpr Code File = codeOf("file");
inline constexpr Code FileURLType = codeOf("furl");
inline constexpr Code Folder = codeOf("cfol");
inline constexpr Code IntegerType = codeOf("long");
inline constexpr Code Item = codeOf("cobj");
inline constexpr Code ListType = codeOf("list");
inline constexpr Code LoginItem = codeOf("logi");
inline constexpr Code MissingValue = codeOf("msng");
inline constexpr Code NumberType = codeOf("nmbr");
inline constexpr Code OriginalItem = codeOf("orig");
inline constexpr Code SystemPOSIXPath = codeOf("posx");
inline constexpr Code RawDataType = codeOf("rdat");
inline constexpr Code IsFolder = codeOf("asdr");
inline constexpr Code Package = codeOf("pack");
inline constexpr Code Process = codeOf("prcs");
inline constexpr Code ApplicationProcess = codeOf("pcap");
inline constexpr Code PropertyListFile = codeOf("plif");
inline constexpr Code PropertyListItem = codeOf("plii");
inline constexpr Code User = codeOf("uacc");
inline constexpr Code POSIXFileType = codeOf("psxf");
inline constexpr Code RealType = codeOf("doub");
inline constexpr Code RecordType = codeOf("reco");
inline constexpr Code ReferenceType = codeOf("obj ");
inline constexpr Code ScriptType = codeOf("scpt");
inline constexpr Code StringType = codeOf("TEXT");
inline constexpr Code CharacterType = codeOf("cha ");
inline constexpr Code TextType = codeOf("ctxt");
inline constexpr Code UnicodeTextType = codeOf("utxt");
inline constexpr Code AnyType = codeOf("****");

inline constexpr Code BundleIdentifier = codeOf("bnid");
inline constexpr Code Capacity = codeOf("capa");
inline constexpr Code Class = codeOf("pcls");
inline constexpr Code Contents = codeOf("pcnt");
inline constexpr Code Comment = codeOf("comt");
inline constexpr Code CreationDate = codeOf("ascd");
inline constexpr Code Creator = codeOf("fcrt");
inline constexpr Code Desktop = codeOf("desk");
inline constexpr Code DisplayedName = codeOf("dnam");
inline constexpr Code Ejectable = codeOf("isej");
inline constexpr Code EntireContents = codeOf("ects");
inline constexpr Code ExtensionHidden = codeOf("hidx");
inline constexpr Code FileType = codeOf("asty");
inline constexpr Code Format = codeOf("dfmt");
inline constexpr Code FreeSpace = codeOf("frsp");
inline constexpr Code Frontmost = codeOf("pisf");
inline constexpr Code Hidden = codeOf("hidn");
inline constexpr Code Home = codeOf("home");
inline constexpr Code Identifier = codeOf("ID  ");
inline constexpr Code Index = codeOf("pidx");
inline constexpr Code InformationWindow = codeOf("iwnd");
inline constexpr Code It = codeOf("it  ");
inline constexpr Code Kind = codeOf("kind");
inline constexpr Code LocalVolume = codeOf("isrv");
inline constexpr Code Locked = codeOf("aslk");
inline constexpr Code ModificationDate = codeOf("asmo");
inline constexpr Code Name = codeOf("pnam");
inline constexpr Code NameExtension = codeOf("nmxt");
inline constexpr Code Parent = codeOf("pare");
inline constexpr Code Path = codeOf("ppth");
inline constexpr Code PhysicalSize = codeOf("phys");
inline constexpr Code POSIXPath = codeOf("psxp");
inline constexpr Code Properties = codeOf("pALL");
inline constexpr Code Running = codeOf("prun");
inline constexpr Code ShortName = codeOf("cfbn");
inline constexpr Code Size = codeOf("ptsz");
inline constexpr Code Startup = codeOf("istd");
inline constexpr Code StartupDisk = codeOf("sdsk");
inline constexpr Code Trash = codeOf("trsh");
inline constexpr Code URL = codeOf("purl");
inline constexpr Code Value = codeOf("valL");
inline constexpr Code Version = codeOf("vers");
inline constexpr Code Visible = codeOf("pvis");

inline constexpr Code TextItemDelimiters = codeOf("txdl");

inline constexpr Code InsertionLocation = codeOf("insl");
inline constexpr Code DataParameter = codeOf("data");
inline constexpr Code DirectParameter = codeOf("----");
inline constexpr Code InsertionParameter = codeOf("insh");
// The Finder's constants for what a user may do with an item.
inline constexpr Code NoAccess = codeOf("none");
inline constexpr Code ReadOnly = codeOf("read");
inline constexpr Code ReadWrite = codeOf("rdwr");
inline constexpr Code WriteOnly = codeOf("writ");

inline constexpr Code InvisiblesParameter = codeOf("lfiv");
inline constexpr Code NewClassParameter = codeOf("kocl");
inline constexpr Code PromptParameter = codeOf("prmp");
inline constexpr Code PropertiesParameter = codeOf("prdt");
inline constexpr Code ReplacingParameter = codeOf("alrp");
inline constexpr Code RequestedTypeParameter = codeOf("rtyp");
inline constexpr Code SeveralParameter = codeOf("mlsl");
inline constexpr Code TitleParameter = codeOf("appr");
inline constexpr Code ToParameter = codeOf("to  ");

} // namespace mac::applescript::codes
