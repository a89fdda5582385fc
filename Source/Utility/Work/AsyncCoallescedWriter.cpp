#include "Utility/Work/AsyncCoallescedWriter.h"

#include "CFMethods/PropertyList.h"
#include "Platform/Platform.h"
#include "Platform/ProcessNotifications.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <map>
#include <vector>

namespace
{
struct Writers
{
    explicit Writers( XWork& inWork ) : mWork( inWork ) {}

    XWork& mWork;
    std::mutex mMutex;
    bool mIsTerminating = false;
    std::map<Text, std::unique_ptr<AsyncCoallescedWriter>, std::less<>> mByCode;
};
} // namespace

AsyncCoallescedWriter* AsyncCoallescedWriter::asyncCoallescedWriter( TextView inCode )
{
    auto& writers = XWork::Current().Shared<Writers>();
    std::unique_lock lock( writers.mMutex );
    if ( writers.mIsTerminating )
    {
        lock.unlock();
        XAssertText( false, "!gTerminating" );
        return nullptr;
    }
    auto& writer = writers.mByCode[Text( inCode )];
    if ( not writer )
        writer = std::make_unique<AsyncCoallescedWriter>( writers.mWork, inCode );
    return writer.get();
}

void AsyncCoallescedWriter::applicationWillTerminate()
{
    auto& writers = XWork::Current().Shared<Writers>();
    std::vector<AsyncCoallescedWriter*> all;
    {
        const std::scoped_lock lock( writers.mMutex );
        writers.mIsTerminating = true;
        for ( const auto& [code, writer] : writers.mByCode )
            all.push_back( writer.get() );
    }
    for ( AsyncCoallescedWriter* writer : all )
        writer->Close();
    XErrorHandler::PrivateMaybeLogFormat(
        "AsyncCoallescedWriter", "AsyncCoallescedWriter applicationWillTerminate finished" );
}

AsyncCoallescedWriter::AsyncCoallescedWriter( XWork& inWork, TextView inCode )
    : mWork( inWork ),
      mCode( inCode ),
      mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalen." + mCode ) )
{}

void AsyncCoallescedWriter::asyncCoallescedWrite( WriteBlock inBlock )
{
    bool hasName = false;
    {
        const std::scoped_lock lock( mMutex );
        hasName = mNotificationName.has_value();
    }
    XAssertText( not hasName, "!i_notificationName" );
    if ( not hasName )
        QueueWrite( std::move( inBlock ), {} );
}

void AsyncCoallescedWriter::asyncCoallescedWrite(
    WriteBlock inBlock, TextView inNotificationName, TextView inNotificationFrom )
{
    bool isName = false;
    {
        const std::scoped_lock lock( mMutex );
        if ( not mNotificationName )
            mNotificationName = inNotificationName;
        isName = *mNotificationName == inNotificationName;
    }
    XAssertText( isName, "[i_notificationName isEqualToString:notificationName]" );
    if ( isName )
        QueueWrite( std::move( inBlock ), Text( inNotificationFrom ) );
}

void AsyncCoallescedWriter::QueueWrite( WriteBlock inBlock, std::optional<Text> inNotificationFrom )
{
    XAssertText( inBlock, "block" );
    if ( not inBlock )
        return;
    std::unique_lock lock( mMutex );
    if ( not mIsClosed )
    {
        mEntries.push_back( { true, std::move( inBlock ), std::move( inNotificationFrom ) } );
        mQueue->Async( [this] { writeOne(); } );
        return;
    }
    lock.unlock();
    XAssertText( false, "!gTerminating" );
}

void AsyncCoallescedWriter::syncRead( const XBlock& inBlock )
{
    XAssertText( inBlock, "block" );
    if ( not inBlock )
        return;
    if ( mQueue->IsCurrent() )
    {
        // What is queued can't be run before the block that is running: a newer write inside an older one
        // would be overwritten by it.
        XAssertText( false, "not mQueue->IsCurrent()" );
        inBlock();
        return;
    }
    std::unique_lock lock( mMutex );
    if ( not mIsClosed )
    {
        mEntries.push_back( { false, {}, {}, &inBlock } );
        mQueue->Sync( [this] { readOne(); }, lock );
        return;
    }
    lock.unlock();
    XAssertText( false, "!gTerminating" );
}

// A read like any other, after which nobody gets in: nothing can slip between the drain and the end.
void AsyncCoallescedWriter::Close()
{
    const XBlock nothing = [] {};
    std::unique_lock lock( mMutex );
    if ( mIsClosed )
        return;
    mIsClosed = true;
    mEntries.push_back( { false, {}, {}, &nothing } );
    mQueue->Sync( [this] { readOne(); }, lock );
}

void AsyncCoallescedWriter::writeOne()
{
    WriteBlock newest;
    std::set<Text> senders;
    std::vector<WriteBlock> dropped; // what they captured goes when the mutex is open
    {
        const std::scoped_lock lock( mMutex );
        // Empty, or a read at the head: an earlier writeOne has taken this entry.
        while ( not mEntries.empty() and mEntries.front().mIsWrite )
        {
            QueueEntry& entry = mEntries.front();
            dropped.push_back( std::exchange( newest, std::move( entry.mBlock ) ) );
            if ( entry.mNotificationFrom )
                senders.insert( std::move( *entry.mNotificationFrom ) );
            mEntries.pop_front();
        }
    }
    dropped.clear();
    if ( not newest )
        return;
    bool isWritten = false;
    try
    {
        isWritten = newest();
    }
    catch ( ... ) // a failed write as well, and the senders wait to be told
    {
        XException::LogCurrent( mQueue->GetLabel() );
    }
    if ( not isWritten )
        XErrorHandler::PrivateMaybeLogFormat( "always", "AsyncCoallescedWriter %@ write error", mCode );
    Notify( senders );
}

void AsyncCoallescedWriter::readOne()
{
    const XBlock* block = nullptr;
    {
        const std::scoped_lock lock( mMutex );
        if ( not mEntries.empty() and not mEntries.front().mIsWrite )
        {
            block = mEntries.front().mRead;
            mEntries.pop_front();
        }
    }
    XAssertText( block, "false" );
    if ( block )
        ( *block )();
}

void AsyncCoallescedWriter::Notify( const std::set<Text>& inSenders )
{
    if ( inSenders.empty() )
        return;
    std::optional<Text> name;
    {
        const std::scoped_lock lock( mMutex );
        name = mNotificationName;
    }
    mWork.MainQueue()->Async( [bNotificationName = std::move( name ), inSenders] {
        XAssert( bNotificationName );
        for ( const Text& sender : inSenders )
        {
            XMutableDictionary payload;
            payload.SetBoolean( CFSTR( "Engine" ), false );
            payload.SetText( CFSTR( "From" ), TextView( sender ) );
            if ( bNotificationName )
                Platform::Current().ProcessNotifier().Post(
                    *bNotificationName, payload.Seal(), XProcessNotifier::Audience::kEverybody );
        }
    } );
}
