#include "Actions/HObjectNames.h"

namespace
{
constinit const HObjectNames* gNames = nullptr;
}

void HObjectNames::Install( const HObjectNames* inNames )
{
    gNames = inNames;
}

std::optional<Text> HObjectNames::UnambiguousNameOf( const XText& inUID )
{
    return gNames ? gNames->GetUnambiguousName( inUID ) : std::nullopt;
}
