#include "Actions/HDelayPreference.h"

namespace HDelayPreference
{
namespace
{
struct Row
{
    TextView mDisplayName;
    double mDefault; // seconds
};

constexpr Row kRows[] = {
    { u"Copy/Paste", 0.2 },
    { u"Simulate Normal Keystroke", 0.001 },
    { u"Simulate Command Keystroke", 0.15 },
    { u"Simulate Modifiers", 0.15 },
    { u"Simulate Dead Key", 0.03 },
    { u"Between Actions", 0 },
    { u"Drag", 0.1 }, // beyond the double-click interval
    { u"Large Text Display", 5.0 },
};
static_assert( std::size( kRows ) == std::size( kNames ) );
} // namespace

TextView GetDisplayName( Delay inDelay )
{
    return kRows[std::size_t( inDelay )].mDisplayName;
}

double GetDefault( Delay inDelay, double inDoubleClickInterval )
{
    return kRows[std::size_t( inDelay )].mDefault + ( inDelay == Delay::kDrag ? inDoubleClickInterval : 0 );
}
} // namespace HDelayPreference
