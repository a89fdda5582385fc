#include "XCAF/XErrorHandler.h"

#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Utility/Work/Clock.h"
#include "Utility/Work/Work.h"
#include "XCAF/LogFile.h"
#include "XCAF/UserFolders.h"
#include "XCAF/XErrorHandlerTesting.h"
#include "XCAF/XFileWriting.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <mutex>

namespace
{
// What "Debug" says. Made once, then never changed or destroyed: any thread reads it without a lock.
struct DebugLevel
{
    std::string mShould;             // gShould: the words with one space before and after, or empty
    std::vector<std::string> mWords; // the same, so that a tag that is off costs a few comparisons
    bool mIsAll = false, mAccurateTime = false;
};

// Deliberately never destroyed: other threads and late destructors log to the very end.
struct State
{
    std::mutex mMutex; // guards what isn't atomic
    XErrorHandler::PreferenceSource mSource;
    XErrorHandler::TestSink mSink;
    std::filesystem::path mLogsFolder;
    std::vector<std::unique_ptr<const DebugLevel>> mLevels; // one, but for tests

    std::atomic<const DebugLevel*> mLevel{ nullptr };
    std::atomic<bool> mHasSource{ false }, mIsReadingDebug{ false }, mHasSink{ false };
    std::atomic<int> mAssertBeep{ -1 };     // -1: not yet read
    std::atomic<bool> mQuitting{ false };   // gQuitting
    std::atomic<bool> mSyncronous{ false }; // gHackSyncronousLogging
};

State& TheState()
{
    static State* const gState = new State;
    return *gState;
}

// The queue and the file that only it touches, one for each environment of queues.
struct LogFileQueue
{
    explicit LogFileQueue( XWork& inWork )
        : mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalen.LogToLogFile" ) ),
          mFile( std::make_shared<XLogFile>() )
    {}

    const std::shared_ptr<XQueue> mQueue; // gLogFileQueue
    const std::shared_ptr<XLogFile> mFile;
};

bool IsOn( const DebugLevel& inLevel, std::string_view inCode )
{
    if ( inLevel.mShould.empty() )
        return false;
    if ( inLevel.mIsAll or inCode == "any" )
        return true;
    for ( const std::string& word : inLevel.mWords )
    {
        if ( word == inCode )
            return true;
    }
    // Only a tag with a blank in it can stand there without being one of the words.
    return inCode.find( ' ' ) != std::string_view::npos and
        inLevel.mShould.find( " " + std::string( inCode ) + " " ) != std::string::npos;
}

DebugLevel LevelFor( const std::string& inWords )
{
    DebugLevel level;
    if ( inWords.empty() )
        return level;
    level.mShould = " " + inWords + " ";
    level.mIsAll = level.mShould == " all ";
    level.mAccurateTime = level.mShould.find( " AccurateTime " ) != std::string::npos;
    for ( std::size_t start = 1, end; ( end = level.mShould.find( ' ', start ) ) != std::string::npos; start = end + 1 )
    {
        if ( end > start )
            level.mWords.push_back( level.mShould.substr( start, end - start ) );
    }
    return level;
}

const DebugLevel* PublishLevel( DebugLevel inLevel )
{
    State& state = TheState();
    const std::scoped_lock lock( state.mMutex );
    state.mLevels.push_back( std::make_unique<const DebugLevel>( std::move( inLevel ) ) );
    state.mLevel.store( state.mLevels.back().get(), std::memory_order_release );
    return state.mLevels.back().get();
}

// What the source says; absent also when it throws, for logging never fails upward.
template<class Value>
std::optional<Value> AskSource(
    std::function<std::optional<Value>( TextView )> XErrorHandler::PreferenceSource::*inRead, TextView inKey )
{
    State& state = TheState();
    try
    {
        std::function<std::optional<Value>( TextView )> read;
        {
            const std::scoped_lock lock( state.mMutex );
            read = state.mSource.*inRead;
        }
        return read ? read( inKey ) : std::nullopt;
    }
    catch ( const std::exception& )
    {
        return std::nullopt;
    }
}

// Null while there is no source, or while it is being asked: by this very thread if the source logs, or by another,
// for which waiting could be a deadlock.
const DebugLevel* ReadLevel()
{
    State& state = TheState();
    if ( not state.mHasSource.load( std::memory_order_acquire ) )
        return nullptr;
    if ( state.mIsReadingDebug.exchange( true ) )
        return state.mLevel.load( std::memory_order_acquire ); // another may have read it a moment ago
    const std::string words =
        UTF8FromText( AskSource( &XErrorHandler::PreferenceSource::mText, u"Debug" ).value_or( Text() ) );
    if ( words.size() > XErrorHandler::kMaxDebugBytes )
    {
        const DebugLevel* level = PublishLevel( {} );
        XErrorHandler::PrivateMaybeLogFormat( "always",
            "The preference \"Debug\" is longer than %lu bytes and is ignored; shorten it",
            std::uint64_t( XErrorHandler::kMaxDebugBytes ) );
        return level;
    }
    const DebugLevel* level = PublishLevel( LevelFor( words ) );
    XErrorHandler::PrivateMaybeLogFormat( "any", "Debugging level set to '%s'", words );
    return level;
}

const DebugLevel* CurrentLevel()
{
    const DebugLevel* level = TheState().mLevel.load( std::memory_order_acquire );
    return level ? level : ReadLevel();
}

void ReplaceAll( Text& ioText, TextView inOld, TextView inNew )
{
    if ( inOld.empty() or ioText.find( inOld ) == Text::npos )
        return;
    Text result;
    std::size_t at = 0;
    for ( std::size_t found; ( found = ioText.find( inOld, at ) ) != Text::npos; at = found + inOld.size() )
        result.append( ioText, at, found - at ).append( inNew );
    ioText = result.append( ioText, at, Text::npos );
}

Text Cleaned( TextView inMessage )
{
    static const Text* const gSourceRoot = new Text( TextFromUTF8( KORVALEN_SOURCE_ROOT ) );
    Text message( inMessage );
    ReplaceAll( message, u"\r\n", u"\n" );
    ReplaceAll( message, u"\r", u"\n" );
    ReplaceAll( message, *gSourceRoot, u"…/" );
    return message;
}

// "%F %T" whatever the locale.
std::string LocalTime()
{
    constexpr double k2001 = 978307200;
    const std::time_t time = std::time_t( std::floor( XClock::Current().Now() + k2001 ) );
    std::tm parts{};
    ::localtime_r( &time, &parts );
    char text[64];
    std::snprintf( text, sizeof( text ), "%04d-%02d-%02d %02d:%02d:%02d", parts.tm_year + 1900, parts.tm_mon + 1,
        parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec );
    return text;
}

std::string LineFor( const Text& inMessage )
{
    const DebugLevel* level = TheState().mLevel.load( std::memory_order_acquire );
    Text line;
    if ( level and level->mAccurateTime )
    {
        const auto microseconds = std::uint64_t( XClock::Current().MonotonicSeconds() * 1e6 );
        line = kvr_format( "%s %llu %@", LocalTime(), microseconds, inMessage );
    }
    else
        line = kvr_format( "%s %@", LocalTime(), inMessage );
    return UTF8FromText( line ) + "\n";
}

void WriteToFile( const Text& inMessage )
{
    auto& log = XWork::Current().Shared<LogFileQueue>();
    log.mQueue->Async( [file = log.mFile, line = LineFor( inMessage )] {
        try
        {
            file->Append( XErrorHandler::LogFilePath(), line );
        }
        catch ( const std::exception& )
        {
            // Nobody to tell.
        }
    } );
    const State& state = TheState();
    // What runs on the queue itself can't wait for it; the caller who waits for that block waits for this one too.
    if ( ( state.mQuitting or state.mSyncronous ) and not log.mQueue->IsCurrent() )
        log.mQueue->Sync( [] {} );
}

void BeepIfAsked()
{
    State& state = TheState();
    int beep = state.mAssertBeep.load();
    if ( beep < 0 and state.mHasSource )
    {
        state.mAssertBeep = 0; // an assertion of the source itself doesn't come back here
        beep = AskSource( &XErrorHandler::PreferenceSource::mBoolean, u"AssertBeep" ).value_or( false );
        state.mAssertBeep = beep;
    }
    if ( beep > 0 )
        Platform::Current().Alerts().PlayAlertSound( XAlerts::kAlertSound );
}

bool IsCodeLengthRight( std::size_t inLength )
{
    XAssertText( inLength >= 3, "strlen( code ) >= 3" );
    XAssertText( inLength < XErrorHandler::MAXCODELEN, "strlen( code ) < MAXCODELEN" );
    return inLength >= 3 and inLength < XErrorHandler::MAXCODELEN;
}
} // namespace

bool XErrorHandler::MaybeShouldLog( const char* inCode )
{
    const std::string_view code = inCode ? inCode : "";
    if ( ( code.size() < 3 or code.size() >= MAXCODELEN ) and not IsCodeLengthRight( code.size() ) )
        return true;
    if ( code == "always" or code == "display" or code == "debug" )
        return true;
    const DebugLevel* level = CurrentLevel();
    return level and IsOn( *level, code );
}

void XErrorHandler::PrivateLogEnabled( const char* inCode, TextView inMessage )
{
    const bool isAlways = inCode and std::strcmp( inCode, "always" ) == 0;
    PrivateLogMessage( isAlways or MaybeShouldLog( "LOG" ), inMessage );
}

void XErrorHandler::PrivateLogMessage( bool inToSystemLog, TextView inMessage )
{
    try
    {
        const Text message = Cleaned( inMessage );
        State& state = TheState();
        TestSink sink;
        if ( state.mHasSink )
        {
            const std::scoped_lock lock( state.mMutex );
            sink = state.mSink;
        }
        if ( sink )
            sink( inToSystemLog, message );
        else
            WriteToFile( message );
        if ( inToSystemLog )
            Platform::Current().Alerts().SystemLog( message );
    }
    catch ( const std::exception& )
    {
        // Out of memory or threads: the caller's own business goes on without the line.
    }
}

void XErrorHandler::PrivateAssertionFailed(
    const char* inExpression, const char* inExtra, const char* inFile, long inLine, std::int64_t inValue )
{
    XErrorHandlerDebugAssertMessage(
        "Assertion Failed: %s, %s file: %s:%ld, value: %ld", inExpression, inExtra, inFile, inLine, inValue );
}

void XErrorHandler::PrivateAssertMessage( TextView inMessage )
{
    PrivateLogMessage( true, inMessage );
    BeepIfAsked();
}

void XErrorHandler::PrivateBeep( TextView inMessage )
{
    PrivateLogMessage( true, inMessage );
    Platform::Current().Alerts().PlayAlertSound( XAlerts::kAlertSound );
}

void XErrorHandler::SetPreferenceSource( PreferenceSource inSource )
{
    State& state = TheState();
    const std::scoped_lock lock( state.mMutex );
    state.mSource = std::move( inSource );
    state.mHasSource.store( true, std::memory_order_release );
}

void XErrorHandler::SetLogsFolder( std::filesystem::path inFolder )
{
    State& state = TheState();
    const std::scoped_lock lock( state.mMutex );
    state.mLogsFolder = std::move( inFolder );
}

void XErrorHandler::Quitting()
{
    TheState().mQuitting = true;
    const auto& log = XWork::Current().Shared<LogFileQueue>();
    if ( not log.mQueue->IsCurrent() )
        log.mQueue->Sync( [] {} );
}

std::filesystem::path XErrorHandler::LogsFolder()
{
    std::filesystem::path folder;
    {
        State& state = TheState();
        const std::scoped_lock lock( state.mMutex );
        folder = state.mLogsFolder;
    }
    if ( folder.empty() )
        folder = kvr_userFolder( "XDG_STATE_HOME", ".local/state" ) / "Korvalen";
    (void)MakeFolders( folder );
    return folder;
}

std::filesystem::path XErrorHandler::LogFilePath()
{
    return LogsFolder() / "Editor.log";
}

void XErrorHandler::SetSinkForTesting( TestSink inSink )
{
    State& state = TheState();
    const std::scoped_lock lock( state.mMutex );
    state.mHasSink = bool( inSink );
    state.mSink.swap( inSink );
}

void XErrorHandler::ResetForTesting()
{
    State& state = TheState();
    const std::scoped_lock lock( state.mMutex );
    state.mSource = {};
    state.mHasSource = false;
    state.mLevel = nullptr;
    state.mLevels.clear();
    state.mIsReadingDebug = false;
    state.mAssertBeep = -1;
    state.mQuitting = false;
    state.mSyncronous = false;
}

std::shared_ptr<XQueue> XErrorHandler::LogQueueForTesting()
{
    return XWork::Current().Shared<LogFileQueue>().mQueue;
}

void XErrorHandler::SetSyncronousLogging( bool inOn )
{
    TheState().mSyncronous = inOn;
}
