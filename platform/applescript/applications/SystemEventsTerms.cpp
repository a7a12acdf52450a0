#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/applications/TermTable.h"
#include <array>

namespace mac::applescript {

namespace {

constexpr auto SystemEventsClasses = std::to_array<ClassTerm>({
    {u"item", u"items", codeOf("cobj")},
    {u"process", u"processes", codeOf("prcs")},
    {u"application process", u"application processes", codeOf("pcap")},
    {u"login item", u"login items", codeOf("logi")},
    {u"disk item", u"disk items", codeOf("ditm")},
    {u"file", u"files", codeOf("file")},
    {u"folder", u"folders", codeOf("cfol")},
    {u"disk", u"disks", codeOf("cdis")},
    {u"user", u"users", codeOf("uacc")},
});

constexpr auto SystemEventsProperties = std::to_array<PropertyTerm>({
    {u"unix id", codeOf("idux")},
    {u"bundle identifier", codeOf("bnid")},
    {u"background only", codeOf("bkgo")},
    {u"visible", codeOf("pvis")},
    {u"file", codeOf("file")},
    {u"application file", codeOf("appf")},
    {u"displayed name", codeOf("dnam")},
    {u"short name", codeOf("cfbn")},
    {u"POSIX path", codeOf("posx")},
    {u"path", codeOf("ppth")},
    {u"hidden", codeOf("hidn")},
    {u"kind", codeOf("kind")},
    {u"URL", codeOf("url ")},
    {u"size", codeOf("ptsz")},
    {u"physical size", codeOf("phys")},
    {u"creation date", codeOf("ascd")},
    {u"modification date", codeOf("asmo")},
    {u"name extension", codeOf("extn")},
    {u"container", codeOf("ctnr")},
    {u"current user", codeOf("curu")},
    {u"full name", codeOf("anam")},
    {u"home directory", codeOf("home")},
    {u"home folder", codeOf("cusr")},
    {u"desktop folder", codeOf("desk")},
    {u"startup disk", codeOf("sdsk")},
    {u"capacity", codeOf("capa")},
    {u"free space", codeOf("frsp")},
    {u"ejectable", codeOf("isej")},
    {u"startup", codeOf("istd")},
    {u"format", codeOf("dfmt")},
    {u"local volume", codeOf("isrv")},
});

constexpr auto SystemEventsCommands = std::to_array<CommandTerm>({
    {.name = u"open", .code = eventOf("aevtodoc"), .direct = DirectParameter::Required},
    {.name = u"log out", .code = eventOf("fndrlogo")},
    {.name = u"restart", .code = eventOf("fndrrest")},
    {.name = u"shut down", .code = eventOf("fndrshut")},
    {.name = u"sleep", .code = eventOf("fndrslep")},
});

} // namespace

Terminology const& systemEventsTerms() {
    static Terminology const terms = terminologyOf(
        {.classes = SystemEventsClasses, .properties = SystemEventsProperties, .commands = SystemEventsCommands});
    return terms;
}

} // namespace mac::applescript
