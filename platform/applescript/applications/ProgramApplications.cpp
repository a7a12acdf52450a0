#include "platform/applescript/applications/Program.h"
#include "platform/applescript/language/Terminology.h"
#include <array>

namespace mac::applescript {

namespace {

std::array<Application*, 3> const& ownApplications() {
    static std::array<Application*, 3> const all{&finderApplication(), &systemEventsApplication(),
                                                 &systemPreferencesApplication()};
    return all;
}

// "Finder.app" is the Finder as well.
std::u16string plainName(std::u16string_view name) {
    std::u16string folded = foldedName(name);
    if (folded.size() > 4 && folded.ends_with(u".app")) folded.resize(folded.size() - 4);
    return folded;
}

Application* ownApplication(std::u16string_view sought, bool byIdentifier) {
    for (Application* const application : ownApplications()) {
        bool const isIt = byIdentifier ? foldedName(application->identifier()) == foldedName(sought)
                                       : foldedName(application->name()) == plainName(sought);
        if (isIt) return application;
    }
    return nullptr;
}

} // namespace

Application* applicationOf(ApplicationObject const& named) {
    if (Application* const own = ownApplication(named.name, named.byIdentifier)) return own;
    return named.byIdentifier ? programIdentified(named.name) : programNamed(named.name);
}

Terminology const* termsOf(ApplicationObject const& named) {
    Application const* const own = ownApplication(named.name, named.byIdentifier);
    return own ? own->terms() : nullptr;
}

Terminology const* terminologyOfApplication(std::u16string_view nameOrIdentifier) {
    for (bool const byIdentifier : {false, true})
        if (Application const* const application = ownApplication(nameOrIdentifier, byIdentifier))
            return application->terms();
    return nullptr;
}

std::span<Terminology const* const> applicationTerminologies() {
    static std::array<Terminology const*, 3> const all = [] {
        std::array<Terminology const*, 3> terms{};
        for (std::size_t index = 0; index < terms.size(); ++index)
            terms.at(index) = ownApplications().at(index)->terms();
        return terms;
    }();
    return all;
}

} // namespace mac::applescript
