#include "Macros/MMacroFilesSeen.h"

#include "Utility/Work/Work.h"

#include <md5.h>

namespace
{
// Hangs on the environment of queues, so that nothing is seen when a test begins.
class SeenQueue
{
public:
    explicit SeenQueue( XWork& inWork ) : mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalen.MMacroFilesSeen" ) )
    {}

    std::shared_ptr<XQueue> mQueue;
    std::shared_ptr<MSeenDigests> mDigests = std::make_shared<MSeenDigests>(); // touched on the queue
};
} // namespace

MSeenDigests::Digest MSeenDigests::Of( std::span<const std::uint8_t> inBytes )
{
    Digest digest{};
    MD5_CTX context;
    MD5Init( &context );
    MD5Update( &context, inBytes.data(), inBytes.size() );
    MD5Final( digest.data(), &context );
    return digest;
}

void MSeenDigests::Add( const Digest& inDigest )
{
    if ( mCurrent.size() >= kGeneration )
    {
        mOld = std::move( mCurrent );
        mCurrent.clear();
    }
    mCurrent.insert( inDigest );
}

void MMacroFilesSeen::AddSeen( const MMacroFileDataPtr& inData )
{
    auto& seen = XWork::Current().Shared<SeenQueue>();
    seen.mQueue->Async( [digests = seen.mDigests, inData] { digests->Add( MSeenDigests::Of( inData->Span() ) ); } );
}

bool MMacroFilesSeen::ContainsSeen( const MMacroFileDataPtr& inData, bool inAdd )
{
    auto& seen = XWork::Current().Shared<SeenQueue>();
    bool contains = false;
    seen.mQueue->Sync( [&] {
        const auto digest = MSeenDigests::Of( inData->Span() );
        contains = seen.mDigests->Contains( digest );
        if ( inAdd )
            seen.mDigests->Add( digest );
    } );
    return contains;
}
