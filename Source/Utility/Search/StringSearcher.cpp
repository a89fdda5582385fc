#include "Utility/Search/StringSearcher.h"

namespace
{
StringSearcher::Maker gMaker;
}

void StringSearcher::SetMaker( Maker inMaker )
{
    gMaker = std::move( inMaker );
}

std::unique_ptr<StringSearcher> StringSearcher::Create( const XText& inText )
{
    return gMaker ? gMaker( inText ) : nullptr;
}
