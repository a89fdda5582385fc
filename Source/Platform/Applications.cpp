#include "Platform/Applications.h"

namespace
{
class AbsentApplications final : public XApplications
{
public:
    [[nodiscard]] std::optional<Facts> ResolveApplicationAlias( const __SafeCFPropertyList& ) const override
    {
        return std::nullopt;
    }
    [[nodiscard]] __SafeCFPropertyList RefindApplicationAlias( TextView, TextView ) const override { return {}; }
    [[nodiscard]] std::optional<Facts> FindApplication( TextView ) const override { return std::nullopt; }
};
} // namespace

XApplications& XApplications::Absent()
{
    static AbsentApplications gAbsent;
    return gAbsent;
}
