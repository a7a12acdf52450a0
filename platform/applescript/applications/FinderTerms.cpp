#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/TermTable.h"
#include <array>

namespace mac::applescript {

namespace {

constexpr auto FinderClasses = std::to_array<ClassTerm>({
    {u"item", u"items", codeOf("cobj")},
    {u"container", u"containers", codeOf("ctnr")},
    {u"folder", u"folders", codeOf("cfol")},
    {u"disk", u"disks", codeOf("cdis")},
    {u"file", u"files", codeOf("file")},
    {u"document file", u"document files", codeOf("docf")},
    {u"application file", u"application files", codeOf("appf")},
    {u"alias file", u"alias files", codeOf("alia")},
    {u"package", u"packages", codeOf("pack")},
    {u"trash-object", u"", codeOf("ctrs")},
    {u"desktop-object", u"", codeOf("cdsk")},
    {u"Finder window", u"Finder windows", codeOf("brow")},
});

constexpr auto FinderProperties = std::to_array<PropertyTerm>({
    {u"displayed name", codeOf("dnam")},
    {u"name extension", codeOf("nmxt")},
    {u"extension hidden", codeOf("hidx")},
    {u"container", codeOf("ctnr")},
    {u"disk", codeOf("cdis")},
    {u"size", codeOf("ptsz")},
    {u"physical size", codeOf("phys")},
    {u"kind", codeOf("kind")},
    {u"description", codeOf("dscr")},
    {u"comment", codeOf("comt")},
    {u"creation date", codeOf("ascd")},
    {u"modification date", codeOf("asmo")},
    {u"label index", codeOf("labi")},
    {u"owner", codeOf("sown")},
    {u"group", codeOf("sgrp")},
    {u"owner privileges", codeOf("ownr")},
    {u"group privileges", codeOf("gppr")},
    {u"everyones privileges", codeOf("gstp")},
    {u"URL", codeOf("purl")},
    {u"locked", codeOf("aslk")},
    {u"icon", codeOf("iimg")},
    {u"position", codeOf("posn")},
    {u"desktop position", codeOf("dpos")},
    {u"bounds", codeOf("pbnd")},
    {u"information window", codeOf("iwnd")},
    {u"entire contents", codeOf("ects")},
    {u"file type", codeOf("asty")},
    {u"creator type", codeOf("fcrt")},
    {u"original item", codeOf("orig")},
    {u"capacity", codeOf("capa")},
    {u"free space", codeOf("frsp")},
    {u"ejectable", codeOf("isej")},
    {u"local volume", codeOf("isrv")},
    {u"startup", codeOf("istd")},
    {u"format", codeOf("dfmt")},
    {u"desktop", codeOf("desk")},
    {u"trash", codeOf("trsh")},
    {u"home", codeOf("home")},
    {u"startup disk", codeOf("sdsk")},
    {u"computer container", codeOf("pcmp")},
    {u"selection", codeOf("sele")},
    {u"insertion location", codeOf("pins")},
    {u"Finder preferences", codeOf("pfrp")},
    {u"visible", codeOf("pvis")},
    {u"target", codeOf("fvtg")},
    {u"current view", codeOf("pvew")},
    {u"product version", codeOf("ver2")},
});

constexpr auto FinderConstants = std::to_array<PropertyTerm>({
    {u"read only", codeOf("read")},
    {u"read write", codeOf("rdwr")},
    {u"write only", codeOf("writ")},
    {u"none", codeOf("none")},
});

constexpr auto OpenParameters = std::to_array<CommandParameter>({
    {.label = u"using", .code = codeOf("usin")},
    {.label = u"with properties", .code = codeOf("prdt")},
});
constexpr auto Sort = std::to_array<CommandParameter>({{.label = u"by", .code = codeOf("by  ")}});
constexpr auto Update = std::to_array<CommandParameter>({
    {.label = u"necessity", .code = codeOf("nec?"), .isBoolean = true},
    {.label = u"registering applications", .code = codeOf("reg?"), .isBoolean = true},
});
constexpr auto Empty =
    std::to_array<CommandParameter>({{.label = u"security", .code = codeOf("sec?"), .isBoolean = true}});

constexpr auto FinderOptional = DirectParameter::Optional;
constexpr auto FinderRequired = DirectParameter::Required;

constexpr auto FinderCommands = std::to_array<CommandTerm>({
    {.name = u"open", .code = eventOf("aevtodoc"), .direct = FinderRequired, .parameters = OpenParameters},
    {.name = u"empty", .code = eventOf("fndrempt"), .direct = FinderOptional, .parameters = Empty},
    {.name = u"erase", .code = eventOf("fndrfera"), .direct = FinderRequired},
    {.name = u"eject", .code = eventOf("fndrejct"), .direct = FinderOptional},
    {.name = u"update", .code = eventOf("fndrfupd"), .direct = FinderRequired, .parameters = Update},
    {.name = u"clean up", .code = eventOf("fndrfclu"), .direct = FinderOptional, .parameters = Sort},
    {.name = u"sort", .code = eventOf("DATASORT"), .direct = FinderRequired, .parameters = Sort},
    {.name = u"restart", .code = eventOf("fndrrest")},
    {.name = u"shut down", .code = eventOf("fndrshut")},
    {.name = u"sleep", .code = eventOf("fndrslep")},
});

} // namespace

Terminology const& finderTerms() {
    static Terminology const terms = terminologyOf({.classes = FinderClasses,
                                                    .properties = FinderProperties,
                                                    .constants = FinderConstants,
                                                    .commands = FinderCommands});
    return terms;
}

} // namespace mac::applescript
