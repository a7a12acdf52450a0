#include "platform/preferences/NSUserDefaults.h"
#include "platform/Registration.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "platform/foundation/running/NSTimer.h"
#include "platform/preferences/CFPreferences.h"
#include "platform/preferences/PreferenceDomains.h"
#include "platform/system/processes/ProcessList.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <unistd.h>

namespace mac {

namespace {

using SavingClock = std::chrono::steady_clock;

// How long changes are collected; what then remains of the promised second is for the writing.
constexpr std::chrono::milliseconds SavingDelay{500};

NSDictionary ownArgumentDomain() {
    std::vector<std::string> const arguments = argumentsOf(::getpid()).value_or(std::vector<std::string>());
    return argumentDomain(arguments);
}

std::optional<PreferenceDomain> domainOfUser(NSString const& applicationID) {
    return preferenceDomain(applicationID, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
}

// An immutable copy, containers and all; nil for what is no property list.
id copyOfList(id const& value) {
    NSData const data = NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(
        value, NSPropertyListBinaryFormat_v1_0, nullptr);
    return NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        data, NSPropertyListImmutable, nullptr, nullptr);
}

// A value that can be asked for a number: nil for anything but a number or a string.
id scalarOfDefault(id const& value) {
    bool const isScalar = as<NSNumber>(value) != nil || as<NSString>(value) != nil;
    return isScalar ? value : id();
}

} // namespace

class NSUserDefaults::Body : public ObjectBody {
public:
    id value(NSString const& key) {
        if (key == nil) return nil;
        if (id const argument = arguments().objectForKey_(key); argument != nil) return argument;
        for (NSString const& domain :
             {NSString(kCFPreferencesCurrentApplication), NSString(kCFPreferencesAnyApplication)}) {
            if (id const stored = storedValue(domain, key); stored != nil) return stored;
        }
        return m_registered.objectForKey_(key);
    }

    void setValue(NSString const& key, id const& value) {
        std::optional<PreferenceDomain> const domain = domainOfUser(kCFPreferencesCurrentApplication);
        if (!domain || key == nil) return;
        sharedPreferences().setValue(*domain, key, value);
        saveSoon();
        tellObservers();
    }

    void addRegistered(NSDictionary const& defaults) {
        if (defaults.count() == 0) return;
        m_registered.addEntriesFromDictionary_(defaults);
        tellObservers();
    }

    NSDictionary registered() const { return NSDictionary::dictionaryWithDictionary_(m_registered); }

    NSDictionary arguments() {
        if (m_arguments == nil) m_arguments = ownArgumentDomain();
        return m_arguments;
    }

    NSDictionary stored(NSString const& name) {
        std::optional<PreferenceDomain> const domain = domainOfUser(name);
        if (!domain) return NSDictionary::dictionary();
        NSDictionary const values = sharedPreferences().values(*domain);
        if (std::optional<Failure> const problem = sharedPreferences().readingProblem(*domain))
            tellProblem(*domain, problem->reason);
        return values;
    }

    bool synchronize() {
        std::optional<PreferenceDomain> const domain = domainOfUser(kCFPreferencesCurrentApplication);
        if (!domain) return false;
        NSDictionary const before = sharedPreferences().values(*domain);
        bool const isDone = save(*domain);
        if (std::optional<PreferenceDomain> const global = domainOfUser(kCFPreferencesAnyApplication))
            (void)store(*global);
        if (!before.isEqualToDictionary_(sharedPreferences().values(*domain))) tellObservers();
        return isDone;
    }

    // What the timer and the exit of the program do.
    void saveChanges() {
        std::optional<PreferenceDomain> const domain = domainOfUser(kCFPreferencesCurrentApplication);
        if (domain && sharedPreferences().hasChanges(*domain)) save(*domain);
    }

    void reset() {
        synchronize();
        m_arguments = nil;
        m_registered.removeAllObjects();
        m_toldProblems.clear();
    }

private:
    id storedValue(NSString const& name, NSString const& key) {
        std::optional<PreferenceDomain> const domain = domainOfUser(name);
        if (!domain) return nil;
        id const value = sharedPreferences().value(*domain, key);
        if (std::optional<Failure> const problem = sharedPreferences().readingProblem(*domain))
            tellProblem(*domain, problem->reason);
        return value;
    }

    bool save(PreferenceDomain const& domain) {
        m_savingDue.reset();
        m_timer.invalidate();
        m_timer = nil;
        return store(domain);
    }

    bool store(PreferenceDomain const& domain) {
        Result<void, Failure> const written = sharedPreferences().synchronize(domain, RefusedChanges::AreKept);
        if (written.isDone())
            m_toldProblems.erase(domain.file);
        else
            tellProblem(domain, written.problem().reason);
        return written.isDone();
    }

    // Once for each reason, until the domain's file could be read and written again.
    void tellProblem(PreferenceDomain const& domain, std::string const& text) {
        if (m_toldProblems[domain.file].insert(text).second) NSLog("The user defaults cannot be stored: %s", text);
    }

    // A timer of a loop that has ended never comes: what is overdue is asked for anew.
    void saveSoon() {
        saveAtExit();
        SavingClock::time_point const now = SavingClock::now();
        if (m_savingDue && now < *m_savingDue + SavingDelay) return;
        m_savingDue = now + SavingDelay;
        performOnMainRunLoop([this] { startTimer(); });
    }

    void startTimer() {
        if (!m_savingDue) return;
        std::chrono::duration<double> const rest = *m_savingDue - SavingClock::now();
        m_timer.invalidate();
        m_timer = NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats_(
            rest.count(), standardUserDefaults(), "synchronize", nil, NO);
    }

    // An exception would end the program before the other handlers of its exit.
    static void saveInExit() noexcept {
        try {
            bodyOf(standardUserDefaults())->saveChanges();
        } catch (...) {
            std::fputs("The user defaults could not be stored when the program ended.\n", stderr);
        }
    }

    static void saveAtExit() {
        static bool const isRegistered = std::atexit(&saveInExit) == 0;
        (void)isRegistered;
    }

    static void tellObservers() {
        NSNotificationCenter::defaultCenter().postNotificationName_object_(NSUserDefaultsDidChangeNotification,
                                                                           standardUserDefaults());
    }

    // nil until the first value is looked for.
    NSDictionary m_arguments{};
    NSMutableDictionary const m_registered = NSMutableDictionary::dictionary();
    std::optional<SavingClock::time_point> m_savingDue{};
    NSTimer m_timer{};
    // By the file of the domain.
    std::map<std::string, std::set<std::string>> m_toldProblems{};
};

ClassDescription NSUserDefaults::describeClass() {
    return {
        .name = "NSUserDefaults",
        .superclass = classOf<NSObject>(),
        .methods = {method<&NSUserDefaults::objectForKey_>("objectForKey:"),
                    method<&NSUserDefaults::setObject_forKey_>("setObject:forKey:"),
                    method<&NSUserDefaults::removeObjectForKey_>("removeObjectForKey:"),
                    method<&NSUserDefaults::stringForKey_>("stringForKey:"),
                    method<&NSUserDefaults::arrayForKey_>("arrayForKey:"),
                    method<&NSUserDefaults::dictionaryForKey_>("dictionaryForKey:"),
                    method<&NSUserDefaults::dataForKey_>("dataForKey:"),
                    method<&NSUserDefaults::integerForKey_>("integerForKey:"),
                    method<&NSUserDefaults::boolForKey_>("boolForKey:"),
                    method<&NSUserDefaults::registerDefaults_>("registerDefaults:"),
                    method<&NSUserDefaults::synchronize>("synchronize")},
        .classMethods = {classMethod<&NSUserDefaults::standardUserDefaults>("standardUserDefaults")},
    };
}

NSUserDefaults NSUserDefaults::standardUserDefaults() {
    // Never destroyed: changes are also written at the program's exit.
    static NSUserDefaults const& shared = *std::make_unique<NSUserDefaults>(adopt<NSUserDefaults>()).release();
    return shared;
}

void NSUserDefaults::resetStandardUserDefaults() { bodyOf(standardUserDefaults())->reset(); }

id NSUserDefaults::objectForKey_(NSString const& key) const { return *this == nil ? id() : bodyOf(*this)->value(key); }

void NSUserDefaults::setObject_forKey_(id const& value, NSString const& key) const {
    if (*this == nil || key == nil) return;
    id const copy = value == nil ? id() : copyOfList(value);
    if (value != nil && copy == nil)
        throw NSInvalidArgumentException("A user default must be a property list: " + key.UTF8String());
    bodyOf(*this)->setValue(key, copy);
}

void NSUserDefaults::removeObjectForKey_(NSString const& key) const { setObject_forKey_(nil, key); }

NSString NSUserDefaults::stringForKey_(NSString const& key) const {
    id const value = objectForKey_(key);
    NSNumber const number = as<NSNumber>(value);
    return number == nil ? as<NSString>(value) : number.stringValue();
}

NSArray NSUserDefaults::arrayForKey_(NSString const& key) const { return as<NSArray>(objectForKey_(key)); }

NSDictionary NSUserDefaults::dictionaryForKey_(NSString const& key) const {
    return as<NSDictionary>(objectForKey_(key));
}

NSData NSUserDefaults::dataForKey_(NSString const& key) const { return as<NSData>(objectForKey_(key)); }

NSArray NSUserDefaults::stringArrayForKey_(NSString const& key) const {
    NSArray const values = arrayForKey_(key);
    for (id const& value : values) {
        if (as<NSString>(value) == nil) return nil;
    }
    return values;
}

NSInteger NSUserDefaults::integerForKey_(NSString const& key) const {
    id const value = scalarOfDefault(objectForKey_(key));
    NSNumber const number = as<NSNumber>(value);
    return number == nil ? as<NSString>(value).intValue() : number.integerValue();
}

float NSUserDefaults::floatForKey_(NSString const& key) const { return static_cast<float>(doubleForKey_(key)); }

double NSUserDefaults::doubleForKey_(NSString const& key) const {
    id const value = scalarOfDefault(objectForKey_(key));
    NSNumber const number = as<NSNumber>(value);
    return number == nil ? as<NSString>(value).doubleValue() : number.doubleValue();
}

bool NSUserDefaults::boolForKey_(NSString const& key) const {
    id const value = scalarOfDefault(objectForKey_(key));
    NSNumber const number = as<NSNumber>(value);
    return number == nil ? as<NSString>(value).boolValue() : number.boolValue();
}

void NSUserDefaults::setInteger_forKey_(NSInteger value, NSString const& key) const {
    setObject_forKey_(NSNumber::numberWithInteger_(value), key);
}

void NSUserDefaults::setFloat_forKey_(float value, NSString const& key) const {
    setObject_forKey_(NSNumber::numberWithFloat_(value), key);
}

void NSUserDefaults::setDouble_forKey_(double value, NSString const& key) const {
    setObject_forKey_(NSNumber::numberWithDouble_(value), key);
}

void NSUserDefaults::setBool_forKey_(BOOL value, NSString const& key) const {
    setObject_forKey_(NSNumber::numberWithBool_(value), key);
}

void NSUserDefaults::registerDefaults_(NSDictionary const& defaults) const {
    if (*this != nil) bodyOf(*this)->addRegistered(defaults);
}

NSDictionary NSUserDefaults::dictionaryRepresentation() const {
    if (*this == nil) return nil;
    Body* const body = bodyOf(*this);
    NSMutableDictionary const all = NSMutableDictionary::dictionaryWithDictionary_(body->registered());
    all.addEntriesFromDictionary_(body->stored(kCFPreferencesAnyApplication));
    all.addEntriesFromDictionary_(body->stored(kCFPreferencesCurrentApplication));
    all.addEntriesFromDictionary_(body->arguments());
    return all;
}

NSDictionary NSUserDefaults::volatileDomainForName_(NSString const& name) const {
    if (*this == nil) return nil;
    if (name.isEqual_(NSArgumentDomain)) return bodyOf(*this)->arguments();
    return name.isEqual_(NSRegistrationDomain) ? bodyOf(*this)->registered() : NSDictionary();
}

NSDictionary NSUserDefaults::persistentDomainForName_(NSString const& name) const {
    if (*this == nil) return nil;
    bool const isGlobal = name.isEqual_(NSGlobalDomain);
    return bodyOf(*this)->stored(isGlobal ? NSString(kCFPreferencesAnyApplication) : name);
}

bool NSUserDefaults::synchronize() const { return *this != nil && bodyOf(*this)->synchronize(); }

void registerPreferences() { registerClasses<NSUserDefaults>(); }

} // namespace mac
