#include "Macros/HMacroStats.h"

namespace
{
class NoStats final : public HMacroStats
{
    [[nodiscard]] XAbsoluteTime LastExecution( const XText& ) const override { return 0; }
    [[nodiscard]] std::uint64_t ExecutionCount( const XText& ) const override { return 0; }
    [[nodiscard]] double TimeSaved( const XText& ) const override { return 0; }
};

const NoStats gNoStats;
const HMacroStats* gStats = &gNoStats;
} // namespace

const HMacroStats& HMacroStats::Current()
{
    return *gStats;
}

void HMacroStats::SetCurrent( const HMacroStats* inStats )
{
    gStats = inStats ? inStats : &gNoStats;
}
