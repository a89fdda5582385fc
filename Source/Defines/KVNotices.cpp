#include "Defines/KVNotices.h"

#include "CFMethods/PropertyListCodec.h"
#include "Defines/KVPreferences.h"
#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <mutex>

namespace
{
using KVNotices::Notice;

constexpr std::size_t kMostBytes = std::size_t( 16 ) << 20;
constexpr std::size_t kMostNotices = 100;

std::mutex& gMutex()
{
    static std::mutex gTheMutex;
    return gTheMutex;
}

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

std::vector<Notice> ReadNotices()
{
    std::vector<Notice> notices;
    const XFileContent content = ReadWholeFile( NoticesFile(), kMostBytes );
    if ( content.mError )
        return notices;
    const auto properties = ReadPropertyList( content.mBytes.Span() );
    const XPlistArray* const array = properties.mValue ? properties.mValue.AsArray() : nullptr;
    for ( std::size_t i = 0; array and i < array->GetCount(); ++i )
    {
        const __SafeCFPropertyList value = array->GetValueAt( i );
        const XPlistDictionary* const entry = value.AsDictionary();
        if ( not entry )
            continue;
        Notice notice{ TextAt( *entry, CFSTR( "Identifier" ) ), TextAt( *entry, CFSTR( "Title" ) ),
            TextAt( *entry, CFSTR( "Text" ) ), UTF8FromText( TextAt( *entry, CFSTR( "Path" ) ) ) };
        (void)entry->Get( CFSTR( "Time" ), notice.mTime );
        notices.push_back( std::move( notice ) );
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
    if ( const auto error = XAtomicFile::Write(
             NoticesFile(), WriteBinaryPropertyList( array.Seal() ).Span(), XAtomicFile::Links::kReplace ) )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't keep a notice: %@", error->Describe() );
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
    {
        const std::scoped_lock lock( gMutex() );
        auto notices = ReadNotices();
        const auto same = std::find_if( notices.begin(), notices.end(), [&]( const Notice& other ) {
            return other.mIdentifier == inNotice.mIdentifier and other.mPath == inNotice.mPath;
        } );
        if ( same != notices.end() )
        {
            isNew = same->mText != inNotice.mText;
            notices.erase( same );
        }
        notices.push_back( inNotice );
        if ( notices.size() > kMostNotices )
            notices.erase( notices.begin() );
        WriteNotices( notices );
    }
    if ( isNew )
        Show( inNotice );
}

std::vector<KVNotices::Notice> KVNotices::Unanswered()
{
    const std::scoped_lock lock( gMutex() );
    return ReadNotices();
}

bool KVNotices::IsUnanswered( TextView inIdentifier )
{
    const auto notices = Unanswered();
    return std::any_of(
        notices.begin(), notices.end(), [&]( const Notice& notice ) { return notice.mIdentifier == inIdentifier; } );
}

void KVNotices::Answer( TextView inIdentifier )
{
    const std::scoped_lock lock( gMutex() );
    auto notices = ReadNotices();
    if ( std::erase_if( notices, [&]( const Notice& notice ) { return notice.mIdentifier == inIdentifier; } ) > 0 )
        WriteNotices( notices );
}

void KVNotices::AnswerAll()
{
    const std::scoped_lock lock( gMutex() );
    if ( not ReadNotices().empty() )
        WriteNotices( {} );
}
