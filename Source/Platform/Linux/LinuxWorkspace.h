// Opening things as the desktop's user has chosen. Private to this folder. Main thread.
#pragma once

#include "Platform/Linux/BusConnection.h"
#include "Platform/Workspace.h"

class LinuxWorkspace final : public XWorkspace
{
public:
    /// The connection must outlive this object.
    explicit LinuxWorkspace( const BusConnection& inBus ) : mConnection( inBus ) {}

    bool OpenURL( TextView inURL ) override;
    bool OpenFile( const std::filesystem::path& inPath ) override;
    /// By the file manager that the bus knows, or else by opening the folder.
    bool Reveal( const std::filesystem::path& inPath ) override;

private:
    const BusConnection& mConnection;
};
