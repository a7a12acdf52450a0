#include "platform/preferences/NSUserDefaults.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/running/NSNotificationCenter.h"
#include "tests/platform/preferences/PreferenceHome.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/RunUntil.h"
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace mac::test {

namespace {

// Counts the changes that it is told of.
class DefaultsObserver : public Handle<DefaultsObserver, NSObject> {
public:
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "DefaultsObserver",
                .superclass = classOf<NSObject>(),
                .makeBody = &makeEmptyBody<DefaultsObserver>,
                .methods = {method<&DefaultsObserver::defaultsDidChange_>("defaultsDidChange:")}};
    }
    void defaultsDidChange_(NSNotification const& notification) const;
    int changes() const;
};

class DefaultsObserver::Body : public ObjectBody {
public:
    int m_changes{0};
};

void DefaultsObserver::defaultsDidChange_(NSNotification const& notification) const {
    EXPECT_TRUE(isSame(notification.object(), NSUserDefaults::standardUserDefaults()));
    ++bodyOf(*this)->m_changes;
}

int DefaultsObserver::changes() const { return bodyOf(*this)->m_changes; }

class UserDefaults : public PreferenceHome {
protected:
    UserDefaults() { NSUserDefaults::resetStandardUserDefaults(); }
    // Synchronised before the environment is another one again.
    ~UserDefaults() override {
        m_defaults.synchronize();
        NSUserDefaults::resetStandardUserDefaults();
    }

    static std::string ownDomain() { return NSBundle::mainBundle().executablePath().lastPathComponent().UTF8String(); }
    std::string ownFile() const { return file(ownDomain()); }
    bool hasFile() const { return ::access(ownFile().c_str(), F_OK) == 0; }
    std::string preferencesFolder() const { return m_folder.path("config/framekeeper/Preferences"); }

    NSUserDefaults const m_defaults = NSUserDefaults::standardUserDefaults();
};

// The program of DefaultsProgram.cpp, with these words behind its name.
std::unique_ptr<ChildProcess> defaultsProgram(std::vector<std::string> const& words) {
    std::vector<std::string> arguments{DEFAULTS_PROGRAM};
    arguments.insert(arguments.end(), words.begin(), words.end());
    return std::make_unique<ChildProcess>(arguments);
}

} // namespace

TEST_F(UserDefaults, AnswerAtOnceWhatWasSetAndStoreItWhenSynchronised) {
    m_defaults.setObject_forKey_("blue", "colour");
    EXPECT_TRUE(m_defaults.objectForKey_("colour").isEqual_("blue"));
    EXPECT_FALSE(hasFile());
    EXPECT_TRUE(m_defaults.synchronize());
    EXPECT_NE(contentsOf(ownFile()).find("<string>blue</string>"), std::string::npos);
    EXPECT_TRUE(m_defaults.objectForKey_("colour").isEqual_("blue"));
}

TEST_F(UserDefaults, LieInTheFileThatPreferencesOfThisApplicationLieIn) {
    setValueIn(kCFPreferencesCurrentApplication, "key", "by preferences");
    EXPECT_TRUE(m_defaults.objectForKey_("key").isEqual_("by preferences"));
    m_defaults.setObject_forKey_("by defaults", "key");
    EXPECT_TRUE(valueIn(kCFPreferencesCurrentApplication, "key").isEqual_("by defaults"));
    EXPECT_TRUE(synchronize(kCFPreferencesCurrentApplication));
    EXPECT_TRUE(hasFile());
}

TEST_F(UserDefaults, AreFoundInTheApplicationsDomainThenInTheGlobalOneThenAmongTheRegistered) {
    m_defaults.registerDefaults_(NSDictionary::dictionaryWithObject_forKey_("registered", "key"));
    EXPECT_TRUE(m_defaults.objectForKey_("key").isEqual_("registered"));
    setValueIn(kCFPreferencesAnyApplication, "key", "global");
    EXPECT_TRUE(m_defaults.objectForKey_("key").isEqual_("global"));
    m_defaults.setObject_forKey_("own", "key");
    EXPECT_TRUE(m_defaults.objectForKey_("key").isEqual_("own"));
    m_defaults.removeObjectForKey_("key");
    EXPECT_TRUE(m_defaults.objectForKey_("key").isEqual_("global"));
    setValueIn(kCFPreferencesAnyApplication, "key", nil);
    EXPECT_TRUE(m_defaults.objectForKey_("key").isEqual_("registered"));
}

TEST_F(UserDefaults, ThatAreRegisteredAreNotStored) {
    m_defaults.registerDefaults_(NSDictionary::dictionaryWithObjectsAndKeys_({"1", "one", "2", "two"}));
    m_defaults.registerDefaults_(NSDictionary::dictionaryWithObject_forKey_("3", "two"));
    EXPECT_TRUE(m_defaults.objectForKey_("one").isEqual_("1"));
    EXPECT_TRUE(m_defaults.objectForKey_("two").isEqual_("3"));
    EXPECT_TRUE(m_defaults.synchronize());
    EXPECT_FALSE(hasFile());
    EXPECT_EQ(m_defaults.volatileDomainForName_(NSRegistrationDomain).count(), 2U);
    EXPECT_EQ(m_defaults.persistentDomainForName_(kCFPreferencesCurrentApplication).count(), 0U);
}

TEST_F(UserDefaults, AreRepresentedByOneDictionaryOfAllDomains) {
    m_defaults.registerDefaults_(NSDictionary::dictionaryWithObjectsAndKeys_({"r", "a", "r", "b", "r", "c"}));
    setValueIn(kCFPreferencesAnyApplication, "b", "g");
    setValueIn(kCFPreferencesAnyApplication, "c", "g");
    m_defaults.setObject_forKey_("o", "c");
    NSDictionary const expected = NSDictionary::dictionaryWithObjectsAndKeys_({"r", "a", "g", "b", "o", "c"});
    EXPECT_TRUE(m_defaults.dictionaryRepresentation().isEqual_(expected));
    EXPECT_EQ(m_defaults.persistentDomainForName_(NSGlobalDomain).count(), 2U);
}

TEST_F(UserDefaults, AreCopiedWhenTheyAreSet) {
    NSMutableArray const inner = NSMutableArray::arrayWithObjects_({"a"});
    NSMutableDictionary const outer = NSMutableDictionary::dictionary();
    outer.setObject_forKey_(inner, "inner");
    m_defaults.setObject_forKey_(outer, "key");
    inner.addObject_("b");
    outer.removeAllObjects();
    NSDictionary const expected = NSDictionary::dictionaryWithObject_forKey_(NSArray::arrayWithObject_("a"), "inner");
    EXPECT_TRUE(m_defaults.objectForKey_("key").isEqual_(expected));
    EXPECT_TRUE(as<NSMutableDictionary>(m_defaults.objectForKey_("key")) == nil);
}

TEST_F(UserDefaults, RaiseForWhatIsNoPropertyList) {
    EXPECT_THROW(m_defaults.setObject_forKey_(NSObject::alloc(), "key"), NSInvalidArgumentException);
    EXPECT_THROW(m_defaults.setObject_forKey_(NSArray::arrayWithObject_(NSObject::alloc()), "key"),
                 NSInvalidArgumentException);
    EXPECT_TRUE(m_defaults.objectForKey_("key") == nil);
}

TEST_F(UserDefaults, AreReadAsTheTypeThatIsAskedFor) {
    m_defaults.setInteger_forKey_(-7, "integer");
    m_defaults.setDouble_forKey_(0.5, "double");
    m_defaults.setFloat_forKey_(1.5F, "float");
    m_defaults.setBool_forKey_(YES, "bool");
    m_defaults.setObject_forKey_("12.5 apples", "text");
    m_defaults.setObject_forKey_("Yes", "yes");
    m_defaults.setObject_forKey_(NSData::data(), "data");
    m_defaults.setObject_forKey_(NSArray::arrayWithObjects_({"a", "b"}), "strings");
    m_defaults.setObject_forKey_(NSArray::arrayWithObjects_({"a", NSNumber::numberWithInt_(1)}), "mixed");
    m_defaults.setObject_forKey_(NSDictionary::dictionary(), "dictionary");
    EXPECT_TRUE(m_defaults.synchronize());
    EXPECT_EQ(m_defaults.integerForKey_("integer"), -7);
    EXPECT_TRUE(m_defaults.stringForKey_("integer").isEqualToString_("-7"));
    EXPECT_EQ(m_defaults.doubleForKey_("double"), 0.5);
    EXPECT_EQ(m_defaults.floatForKey_("float"), 1.5F);
    EXPECT_TRUE(m_defaults.boolForKey_("bool"));
    EXPECT_EQ(m_defaults.integerForKey_("text"), 12);
    EXPECT_EQ(m_defaults.doubleForKey_("text"), 12.5);
    EXPECT_TRUE(m_defaults.boolForKey_("yes"));
    EXPECT_TRUE(m_defaults.dataForKey_("data") != nil);
    EXPECT_EQ(m_defaults.stringArrayForKey_("strings").count(), 2U);
    EXPECT_TRUE(m_defaults.stringArrayForKey_("mixed") == nil);
    EXPECT_EQ(m_defaults.arrayForKey_("mixed").count(), 2U);
    EXPECT_TRUE(m_defaults.dictionaryForKey_("dictionary") != nil);
    for (NSString const& key : {NSString("strings"), NSString("data"), NSString("missing"), NSString()}) {
        EXPECT_EQ(m_defaults.integerForKey_(key), 0);
        EXPECT_EQ(m_defaults.doubleForKey_(key), 0.0);
        EXPECT_FALSE(m_defaults.boolForKey_(key));
        EXPECT_TRUE(m_defaults.stringForKey_(key) == nil);
        EXPECT_TRUE(m_defaults.dictionaryForKey_(key) == nil);
    }
}

TEST_F(UserDefaults, TellOfEachChangeAtOnce) {
    DefaultsObserver const observer = DefaultsObserver::alloc();
    NSNotificationCenter::defaultCenter().addObserver_selector_name_object_(
        observer, "defaultsDidChange:", NSUserDefaultsDidChangeNotification, nil);
    m_defaults.setObject_forKey_("1", "key");
    EXPECT_EQ(observer.changes(), 1);
    m_defaults.removeObjectForKey_("key");
    EXPECT_EQ(observer.changes(), 2);
    m_defaults.registerDefaults_(NSDictionary::dictionaryWithObject_forKey_("registered", "key"));
    EXPECT_EQ(observer.changes(), 3);
    EXPECT_TRUE(m_defaults.synchronize());
    EXPECT_EQ(observer.changes(), 3);
    makeFile(ownDomain(), "<plist><dict><key>other</key><string>2</string></dict></plist>");
    EXPECT_TRUE(m_defaults.synchronize());
    EXPECT_EQ(observer.changes(), 4);
    EXPECT_TRUE(m_defaults.objectForKey_("other").isEqual_("2"));
}

TEST_F(UserDefaults, AreSavedByTheRunLoop) {
    m_defaults.setObject_forKey_("1", "key");
    EXPECT_FALSE(hasFile());
    EXPECT_TRUE(runUntil([&] { return hasFile(); }));
    ASSERT_EQ(::unlink(ownFile().c_str()), 0);
    m_defaults.setObject_forKey_("2", "key");
    EXPECT_TRUE(runUntil([&] { return hasFile(); }));
    EXPECT_NE(contentsOf(ownFile()).find("<string>2</string>"), std::string::npos);
}

TEST_F(UserDefaults, ThatASettingsFolderDoesNotTakeStayInMemoryAndAreToldOnce) {
    makeFile("neighbour", "");
    for (std::string const& item :
         {m_folder.path(), m_folder.path("config"), m_folder.path("config/framekeeper"), preferencesFolder()})
        OrdinaryUser::own(item);
    ASSERT_EQ(::chmod(preferencesFolder().c_str(), 0500), 0);
    std::vector<std::string> lines;
    {
        LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
        OrdinaryUser const user;
        m_defaults.setObject_forKey_("1", "key");
        EXPECT_FALSE(m_defaults.synchronize());
        EXPECT_FALSE(m_defaults.synchronize());
        EXPECT_TRUE(m_defaults.objectForKey_("key").isEqual_("1"));
    }
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("The user defaults cannot be stored"), std::string::npos) << lines[0];
    ASSERT_EQ(::chmod(preferencesFolder().c_str(), 0700), 0);
    EXPECT_TRUE(m_defaults.synchronize());
    EXPECT_NE(contentsOf(ownFile()).find("<string>1</string>"), std::string::npos);
}

TEST_F(UserDefaults, ThatAFullDiskDoesNotTakeLeaveTheOldFileWholeAndAreWrittenLater) {
    m_defaults.setObject_forKey_("old", "key");
    EXPECT_TRUE(m_defaults.synchronize());
    std::string const before = contentsOf(ownFile());
    withRefusedCall(SYS_write, ENOSPC, [&] {
        m_defaults.setObject_forKey_("new", "key");
        EXPECT_FALSE(m_defaults.synchronize());
    });
    EXPECT_EQ(contentsOf(ownFile()), before);
    EXPECT_TRUE(m_defaults.objectForKey_("key").isEqual_("new"));
    EXPECT_TRUE(m_defaults.synchronize());
    EXPECT_NE(contentsOf(ownFile()).find("<string>new</string>"), std::string::npos);
}

TEST_F(UserDefaults, OfADamagedFileAreToldAndTheFileStaysAsItIs) {
    makeFile(ownDomain(), "<plist><dict><key>cut");
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    EXPECT_FALSE(m_defaults.synchronize());
    EXPECT_TRUE(m_defaults.objectForKey_("cut") == nil);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find(ownDomain()), std::string::npos) << lines[0];
    m_defaults.setObject_forKey_("1", "key");
    EXPECT_FALSE(m_defaults.synchronize());
    EXPECT_TRUE(m_defaults.objectForKey_("key").isEqual_("1"));
    EXPECT_EQ(contentsOf(ownFile()), "<plist><dict><key>cut");
    ASSERT_EQ(::unlink(ownFile().c_str()), 0);
    EXPECT_TRUE(m_defaults.synchronize());
    EXPECT_NE(contentsOf(ownFile()).find("<string>1</string>"), std::string::npos);
}

TEST_F(UserDefaults, OfADamagedFileAreToldWhenTheyAreFirstRead) {
    makeFile("unread", "damaged");
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    EXPECT_EQ(m_defaults.persistentDomainForName_("unread").count(), 0U);
    EXPECT_EQ(m_defaults.persistentDomainForName_("unread").count(), 0U);
    EXPECT_EQ(lines.size(), 1U);
}

TEST_F(UserDefaults, OfTwoDamagedFilesAreToldOnceForEach) {
    makeFile(ownDomain(), "damaged");
    makeFile(".GlobalPreferences", "damaged");
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    for (int time = 0; time < 3; ++time) {
        EXPECT_TRUE(m_defaults.objectForKey_("key") == nil);
        EXPECT_FALSE(m_defaults.synchronize());
    }
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_NE(lines[0].find(ownDomain()), std::string::npos) << lines[0];
    EXPECT_NE(lines[1].find(".GlobalPreferences"), std::string::npos) << lines[1];
}

TEST_F(UserDefaults, AreSavedWhereTheyBelongedWhenTheProgramsBundleIsReplaced) {
    std::string const bundle = m_folder.makeBundle("A.app", informationFile("com.example.first", "", ""));
    m_folder.makeFolder("A.app/Contents/Linux");
    std::string const program = bundle + "/Contents/Linux/program";
    std::filesystem::copy_file(DEFAULTS_PROGRAM, program);
    ChildProcess child({program, "set-and-wait", "key", "value"});
    ASSERT_EQ(child.readLine(), "it is set");
    m_folder.makeBundle("A.app", informationFile("com.example.second", "", ""));
    child.writeLine("end");
    EXPECT_EQ(child.wait(), 0);
    EXPECT_NE(contentsOf(file("com.example.first")).find("<string>value</string>"), std::string::npos);
    EXPECT_NE(::access(file("com.example.second").c_str(), F_OK), 0);
}

TEST_F(UserDefaults, AreSavedAtTheProgramsExit) {
    auto const program = defaultsProgram({"set", "key", "at exit"});
    EXPECT_EQ(program->wait(), 0);
    EXPECT_NE(contentsOf(file("defaults_program")).find("<string>at exit</string>"), std::string::npos);
}

TEST_F(UserDefaults, AreSavedWithinASecondAlsoWhenTheProgramIsKilledThen) {
    auto const program = defaultsProgram({"set-and-run", "key", "killed"});
    EXPECT_EQ(program->readLine(), "a second is over");
    program->sendSignal(SIGKILL);
    EXPECT_EQ(program->wait(), -SIGKILL);
    EXPECT_NE(contentsOf(file("defaults_program")).find("<string>killed</string>"), std::string::npos);
}

TEST_F(UserDefaults, OfTwoProgramsAtOnceAllArrive) {
    constexpr int count = 40;
    auto const one = defaultsProgram({"set-many", "one", std::to_string(count)});
    auto const two = defaultsProgram({"set-many", "two", std::to_string(count)});
    EXPECT_EQ(one->wait(), 0);
    EXPECT_EQ(two->wait(), 0);
    for (int index = 0; index < count; ++index) {
        for (std::string const name : {"one", "two"}) {
            std::string const key = name + std::to_string(index);
            EXPECT_TRUE(valueIn("defaults_program", NSString::stringWithUTF8String_(key)).isEqual_("set")) << key;
        }
    }
    for (auto const& item : std::filesystem::directory_iterator(preferencesFolder()))
        EXPECT_TRUE(item.path().filename() == "defaults_program.plist" || item.path().filename() == ".lock");
}

TEST_F(UserDefaults, InArgumentsComeFirstAndMayBeAnyBytes) {
    makeFile("defaults_program", "<plist><dict><key>key</key><string>stored</string></dict></plist>");
    auto const plain = defaultsProgram({"get", "key"});
    EXPECT_EQ(plain->readLine(), "stored");
    auto const other = defaultsProgram({"get", "key", "-key", "a\xFF z", "-other\xFE", "1"});
    EXPECT_EQ(other->readLine(), "a\xFF z");
}

TEST(NilUserDefaults, HaveNoValues) {
    NSUserDefaults const none;
    none.setObject_forKey_("value", "key");
    none.removeObjectForKey_("key");
    none.setInteger_forKey_(1, "key");
    none.registerDefaults_(NSDictionary::dictionaryWithObject_forKey_("value", "key"));
    EXPECT_TRUE(none.objectForKey_("key") == nil);
    EXPECT_TRUE(none.stringForKey_("key") == nil);
    EXPECT_TRUE(none.stringArrayForKey_("key") == nil);
    EXPECT_EQ(none.integerForKey_("key"), 0);
    EXPECT_FALSE(none.boolForKey_("key"));
    EXPECT_TRUE(none.dictionaryRepresentation() == nil);
    EXPECT_TRUE(none.volatileDomainForName_(NSArgumentDomain) == nil);
    EXPECT_TRUE(none.persistentDomainForName_(NSGlobalDomain) == nil);
    EXPECT_FALSE(none.synchronize());
}

} // namespace mac::test
