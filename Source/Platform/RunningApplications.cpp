#include "Platform/RunningApplications.h"

namespace
{
class AbsentRunningApplications final : public XRunningApplications
{
public:
    [[nodiscard]] std::vector<std::shared_ptr<XRunningApplication>> RunningApplications( TextView ) const override
    {
        return {};
    }
    [[nodiscard]] bool ProcessExists( std::int64_t ) const override { return false; }
    [[nodiscard]] std::optional<std::filesystem::path> EngineExecutable() const override { return {}; }
    [[nodiscard]] std::optional<Text> Launch( const std::filesystem::path& ) override
    {
        return u"this platform can't start applications";
    }
};
} // namespace

XRunningApplications& XRunningApplications::Absent()
{
    static AbsentRunningApplications gAbsent;
    return gAbsent;
}
