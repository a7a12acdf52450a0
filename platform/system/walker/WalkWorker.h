#pragma once

#include "platform/system/walker/FolderReader.h"
#include "platform/system/walker/FolderStack.h"
#include "platform/system/walker/MountPointSet.h"
#include "platform/system/walker/PackageRule.h"
#include "platform/system/walker/WalkFindings.h"
#include "platform/system/walker/WorkExchange.h"

namespace mac {

// What one thread of a walk does: it receives a share, goes through it depth first, gives from it when another thread
// waits, and receives the next, until the walk is over.
class WalkWorker {
public:
    // What is referred to is shared by all workers and outlives them.
    struct Shared {
        WorkExchange& exchange;
        WalkFindings& findings;
        PackageRule const& packages;
        std::optional<SoughtItem> const& item;
        MountPointSet const& mountPoints;
    };
    WalkWorker(Shared const& shared, std::size_t openLimit);

    void run();

private:
    bool openVolume(FolderShare& share);
    void step();
    void readNames();
    void visit(char const* name);
    void take(FileDescriptor const& folder, std::string const& name);
    void readInto(FolderState& state);
    bool sawAllSubfolders(FolderState const& state) const;
    Result<FileDescriptor> open(FileDescriptor const& parent, char const* name);
    std::string pathOf(std::string_view name) const;
    void subfolderFailed(char const* name, SystemError const& error);
    void topFailed(SystemError const& error);
    void abandonTop(SystemError const& error);

    WorkExchange& m_exchange;
    WalkFindings& m_findings;
    PackageRule const& m_packages;
    std::optional<SoughtItem> const& m_item;
    MountPointSet const& m_mountPoints;
    FolderReader m_reader;
    FolderStack m_stack;
    VolumeTraits m_volume;
};

} // namespace mac
