#include "Defines/KVNotices.h"

#include "CFMethods/PropertyListCodec.h"
#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Utility/Work/Sleep.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XKernelLock.h"

#include <algorithm>
#include <cerrno>
#include <mutex>

namespace
{
using KVNotices::Notice;

constexpr std::size_t kMostBytes = std::size_t( 16 ) << 20;
constexpr std::size_t kMostNotices = 100;
constexpr int kTries = 200;
constexpr double kBetweenTries = 0.001;

std::mutex& gMutex()
{
    static std::mutex gTheMutex;
    return gTheMutex;
}

/// Notices that couldn't be written. They stand for the file of that path until a later write succeeds.
struct Unwritten
{
    explicit Unwritten( XWork& ) {}
    std::filesystem::path mFile; // all under the mutex
    std::vector<Notice> mNotices;
};

std::filesystem::path NoticesFile()
{
    return KVPreferences::FilePath( u"Korvalen Notices.plist" );
}

Text TextAt( const XPlistDictionary& inDictionary, const XKey& inKey )
{
    XText text;
    (void)inDictionary.Get( inKey, text );
    return text.GetText();
}

Notice NoticeFrom( const XPlistDictionary& inEntry )
{
    Notice notice{ TextAt( inEntry, CFSTR( "Identifier" ) ), TextAt( inEntry, CFSTR( "Title" ) ),
        TextAt( inEntry, CFSTR( "Text" ) ), UTF8FromText( TextAt( inEntry, CFSTR( "Path" ) ) ) };
    (void)inEntry.Get( CFSTR( "Time" ), notice.mTime );
    return notice;
}

/// The notices. What isn't one is left out, and named as a reason to set the file aside before it is replaced.
std::vector<Notice> ReadNotices( bool& outIsDamaged )
{
    outIsDamaged = false;
    if ( const auto& unwritten = XWork::Current().Shared<Unwritten>(); unwritten.mFile == NoticesFile() )
        return unwritten.mNotices;
    std::vector<Notice> notices;
    const XFileContent content = ReadWholeFile( NoticesFile(), kMostBytes );
    if ( content.mError )
    {
        outIsDamaged = content.mError->mCode != ENOENT;
        return notices;
    }
    const auto properties = ReadPropertyList( content.mBytes.Span() );
    const XPlistArray* const array = properties.mValue ? properties.mValue.AsArray() : nullptr;
    outIsDamaged = not array;
    for ( std::size_t i = 0; array and i < array->GetCount(); ++i )
    {
        const __SafeCFPropertyList value = array->GetValueAt( i );
        if ( const XPlistDictionary* const entry = value.AsDictionary() )
            notices.push_back( NoticeFrom( *entry ) );
        else
            outIsDamaged = true;
    }
    return notices;
}

void WriteNotices( const std::vector<Notice>& inNotices )
{
    XMutableArray array;
    for ( const Notice& notice : inNotices )
    {
        XMutableDictionary entry;
        entry.SetText( CFSTR( "Identifier" ), TextView( notice.mIdentifier ) );
        entry.SetText( CFSTR( "Title" ), TextView( notice.mTitle ) );
        entry.SetText( CFSTR( "Text" ), TextView( notice.mText ) );
        entry.SetText( CFSTR( "Path" ), TextView( TextFromUTF8( notice.mPath.native() ) ) );
        entry.SetReal( CFSTR( "Time" ), notice.mTime );
        array.Append( entry.Seal() );
    }
    auto& unwritten = XWork::Current().Shared<Unwritten>();
    unwritten = Unwritten( XWork::Current() );
    const auto error = XAtomicFile::Write(
        NoticesFile(), WriteBinaryPropertyList( array.Seal() ).Span(), XAtomicFile::Links::kReplace );
    if ( not error )
        return;
    unwritten.mFile = NoticesFile();
    unwritten.mNotices = inNotices;
    XErrorHandler::PrivateMaybeLogFormat( "always", "Can't keep a notice: %@", error->Describe() );
}

/// Reads, lets the notices be changed, and writes if the change says so; under a lock that other processes respect too.
void Change( const std::function<bool( std::vector<Notice>& ioNotices )>& inChange )
{
    const std::scoped_lock lock( gMutex() );
    // Held for a few file operations, so a few tries are enough; and a notice that may be lost is better than one
    // that waits.
    XKernelLock kernelLock;
    for ( int i = 0; i < kTries; ++i )
    {
        if ( kernelLock.TryTake( KVPreferences::FilePath( u".Korvalen Notices Lock" ) ) !=
            XKernelLock::Result::kHeldByAnother )
            break;
        XSleep::For( kBetweenTries );
    }
    bool isDamaged = false;
    auto notices = ReadNotices( isDamaged );
    if ( not inChange( notices ) )
        return;
    if ( isDamaged )
        (void)SetAside::KeepFile( SetAside::Kind::kOther, NoticesFile(), u"notices that can't be understood" );
    WriteNotices( notices );
}

void Show( const Notice& inNotice )
{
    XErrorHandler::PrivateMaybeLogFormat( "always", "Notice: %@ %@", inNotice.mTitle, inNotice.mText );
    XWork::Current().MainQueue()->Async(
        [title = inNotice.mTitle, text = inNotice.mText] { Platform::Current().Alerts().Notify( title, text ); } );
}
} // namespace

void KVNotices::Post( Notice inNotice )
{
    if ( inNotice.mTime < 1.0 )
        inNotice.mTime = XClock::Current().Now();
    bool isNew = true;
    Change( [&]( std::vector<Notice>& ioNotices ) {
        const auto same = std::find_if( ioNotices.begin(), ioNotices.end(), [&]( const Notice& other ) {
            return other.mIdentifier == inNotice.mIdentifier and other.mPath == inNotice.mPath;
        } );
        if ( same != ioNotices.end() )
        {
            isNew = same->mText != inNotice.mText;
            ioNotices.erase( same );
        }
        ioNotices.push_back( inNotice );
        if ( ioNotices.size() > kMostNotices )
            ioNotices.erase( ioNotices.begin() );
        return true;
    } );
    if ( isNew )
        Show( inNotice );
}

std::vector<KVNotices::Notice> KVNotices::Unanswered()
{
    const std::scoped_lock lock( gMutex() );
    bool isDamaged = false;
    return ReadNotices( isDamaged );
}

bool KVNotices::IsUnanswered( TextView inIdentifier )
{
    const auto notices = Unanswered();
    return std::any_of(
        notices.begin(), notices.end(), [&]( const Notice& notice ) { return notice.mIdentifier == inIdentifier; } );
}

void KVNotices::Answer( TextView inIdentifier )
{
    Change( [&]( std::vector<Notice>& ioNotices ) {
        return std::erase_if( ioNotices, [&]( const Notice& notice ) { return notice.mIdentifier == inIdentifier; } ) >
            0;
    } );
}

void KVNotices::AnswerAll()
{
    Change( []( std::vector<Notice>& ioNotices ) {
        const bool isAny = not ioNotices.empty();
        ioNotices.clear();
        return isAny;
    } );
}
