#include "ClipboardSwitcher/CSClipboardDomain.h"

namespace
{
std::function<void()> gStart, gStop;
}

void CSClipboardDomain::Install( std::function<void()> inStart, std::function<void()> inStop )
{
    gStart = std::move( inStart );
    gStop = std::move( inStop );
}

void CSClipboardDomain::Start()
{
    if ( gStart )
        gStart();
}

void CSClipboardDomain::Stop()
{
    if ( gStop )
        gStop();
}
