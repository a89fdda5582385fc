#include "Utility/Work/ThreadFinished.h"

#include "Utility/Work/ThreadSafeSet.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"

#include <atomic>

namespace
{
struct Tokens
{
    explicit Tokens( XWork& inWork ) : mWork( inWork ) {}

    XWork& mWork;
    std::atomic<ThreadFinished::Token> mLast{ 0 }; // gToken
    ThreadSafeSet<ThreadFinished::Token> mLive;
};

// On the main queue only.
struct Results
{
    explicit Results( XWork& inWork ) : mWork( inWork ) {}

    XWork& mWork;
    std::set<ThreadDataHolder::Token> mInFlight;
    std::unordered_map<ThreadDataHolder::Token, std::shared_ptr<void>> mResults;
};
} // namespace

ThreadFinished::Token ThreadFinished::GetNewToken()
{
    const bool isMain = XIsMainThread();
    XAssertText( isMain, "[NSThread isMainThread]" );
    if ( not isMain )
        return kNull;
    auto& tokens = XWork::Current().Shared<Tokens>();
    const Token token = ++tokens.mLast;
    tokens.mLive.Insert( token );
    return token;
}

void ThreadFinished::Finished( Token inToken )
{
    if ( inToken == kNull )
        return;
    auto& tokens = XWork::Current().Shared<Tokens>();
    tokens.mWork.MainQueue()->Async( [&tokens, inToken] { tokens.mLive.Remove( inToken ); } );
}

bool ThreadFinished::IsLive( Token inToken )
{
    return XWork::Current().Shared<Tokens>().mLive.Contains( inToken );
}

ThreadDataHolder::Token ThreadDataHolder::Start()
{
    const bool isMain = XIsMainThread();
    XAssertText( isMain, "[NSThread isMainThread]" );
    if ( not isMain )
        return kNull;
    AbandonToken();
    mToken = ++XWork::Current().Shared<Tokens>().mLast;
    XWork::Current().Shared<Results>().mInFlight.insert( mToken );
    return mToken;
}

bool ThreadDataHolder::IsFinished()
{
    if ( mResult or mToken == kNull )
        return mResult != nullptr;
    auto& results = XWork::Current().Shared<Results>().mResults;
    const auto found = results.find( mToken );
    if ( found == results.end() )
        return false;
    mResult = std::move( found->second );
    results.erase( found );
    return true;
}

void ThreadDataHolder::AbandonToken()
{
    mResult = nullptr;
    if ( mToken == kNull )
        return;
    auto& results = XWork::Current().Shared<Results>();
    results.mInFlight.erase( mToken );
    results.mResults.erase( mToken );
    mToken = kNull;
}

void ThreadDataHolder::Finished( Token inToken, std::shared_ptr<void> inResult )
{
    XAssertText( inToken != kNull, "token != kNull" );
    XAssertText( inResult, "result" );
    if ( inToken == kNull or not inResult )
        return;
    auto& results = XWork::Current().Shared<Results>();
    results.mWork.MainQueue()->Async( [&results, inToken, result = std::move( inResult )]() mutable {
        if ( results.mInFlight.erase( inToken ) > 0 )
            results.mResults.emplace( inToken, std::move( result ) );
    } );
}
