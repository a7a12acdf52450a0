#pragma once

#include "platform/system/walker/FolderReader.h"
#include "platform/system/walker/FolderStack.h"
#include "platform/system/walker/Packages.h"
#include "platform/system/walker/WalkFindings.h"
#include "platform/system/walker/WorkExchange.h"

namespace mac {

// The work of one thread of a walk: it receives a share, goes through it depth first, gives parts of it away when
// another thread waits, and receives the next, until the walk is over.
class WalkWorker {
public:
    // REQUIRES: all outlive the worker. All but the log are shared by the workers.
    struct Shared {
        WorkExchange& exchange;
        WalkFindings& findings;
        PackageRule const& packages;
        std::string const& folderInPackages; // empty: it is not asked for
        std::optional<SoughtItem> const& item;
        RememberedFolders const* last;    // what the last walk left; nullptr: nothing
        FolderLog* log;                   // for the next one; nullptr: it needs none
        std::atomic<bool> const& wasLeft; // whether the walk was given up
    };
    WalkWorker(Shared const& shared, std::size_t openLimit);

    void run();

private:
    bool openVolume(FolderShare& share);
    void recallVolume(FolderShare& share, FolderFacts const& facts);
    void step();
    void readNames();
    void recallNames();
    void visit(WaitingName const& waiting);
    bool enter(FolderStack::WayToName const& way, WaitingName const& waiting);
    void addPackage(std::string_view name);
    void tellIfUnreadable(std::string_view package);
    void take(FileDescriptor const& folder, std::string const& name);
    void readInto(FolderState& state);
    bool sawAllSubfolders(FolderState const& state) const;
    Result<FileDescriptor> open(FolderStack::WayToName const& way, char const* name);
    std::string pathOf(std::string_view name) const;
    void subfolderFailed(char const* name, SystemError const& error);
    void topFailed(SystemError const& error);
    void abandonTop(SystemError const& error);

    WorkExchange& m_exchange;
    WalkFindings& m_findings;
    PackageRule const& m_packages;
    std::string const& m_folderInPackages;
    std::optional<SoughtItem> const& m_item;
    RememberedFolders const* const m_last;
    FolderLog* const m_log;
    std::atomic<bool> const& m_wasLeft;
    FolderReader m_reader;
    FolderStack m_stack;
    VolumeTraits m_volume;
};

} // namespace mac
