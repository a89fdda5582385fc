#include "Platform/Workspace.h"

namespace
{
class AbsentWorkspace final : public XWorkspace
{
public:
    bool OpenURL( TextView ) override { return false; }
    bool OpenFile( const std::filesystem::path& ) override { return false; }
    bool Reveal( const std::filesystem::path& ) override { return false; }
};
} // namespace

XWorkspace& XWorkspace::Absent()
{
    static AbsentWorkspace gAbsent;
    return gAbsent;
}
