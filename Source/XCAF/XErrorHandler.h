// The one logging and assertion facility. Everything writes through it under short text tags,
// which the preference "Debug" switches on. An assertion never stops the program: it logs and
// goes on, so the code behind it must survive what it asserts. Any thread may log; the file is
// touched only on the queue "com.tessarine.korvalen.LogToLogFile".
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Text/Format.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

namespace XErrorHandler
{
/// A tag has 3 to 99 characters; another length is an assertion.
inline constexpr std::size_t MAXCODELEN = 100;

/// Is the tag on? "always", "display" and "debug" are. A disabled tag costs under 50 ns.
[[nodiscard]] bool MaybeShouldLog( const char* inCode );

/// Logs if the tag is on. Callers with expensive arguments ask MaybeShouldLog first.
template<class... Arguments>
void PrivateMaybeLogFormat( const char* inCode, const char* inFormat, const Arguments&... inArguments );

/// Writes an entry to the log file, and to the system log if asked.
void PrivateLogMessage( bool inToSystemLog, TextView inMessage );

/// Where the two preferences of logging come from; absent means not set. The row that knows the
/// preferences fills it in at start-up. Each is read once in a process, "Debug" by the first
/// question about a tag, "AssertBeep" by the first failed assertion; before there is a source every
/// tag but the three is off, and the question stays open. The functions may log; one that throws
/// counts as not set.
struct PreferenceSource
{
    std::function<std::optional<Text>( TextView inKey )> mText;
    std::function<std::optional<bool>( TextView inKey )> mBoolean;
};
void SetPreferenceSource( PreferenceSource inSource );

/// The longest "Debug" in UTF-8 bytes; a longer one counts as not set, and a log line says so.
inline constexpr std::size_t kMaxDebugBytes = 252;

/// Sets the folder that LogsFolder returns. At start-up, before the first entry.
void SetLogsFolder( std::filesystem::path inFolder );

/// Sets the quitting state, in which every entry is on disk before the call returns, and waits for
/// the queue. Main thread, once, at the end.
void Quitting();

/// The folder "Korvalen" inside the user's logs folder, "$XDG_STATE_HOME" or "~/.local/state", unless
/// another was set; created if needed.
[[nodiscard]] std::filesystem::path LogsFolder();
/// "Editor.log" in that folder.
[[nodiscard]] std::filesystem::path LogFilePath();

void PrivateLogEnabled( const char* inCode, TextView inMessage );
void PrivateAssertionFailed(
    const char* inExpression, const char* inExtra, const char* inFile, long inLine, std::int64_t inValue );
void PrivateAssertMessage( TextView inMessage );
void PrivateBeep( TextView inMessage );

template<class... Arguments>
void PrivateMaybeLogFormat( const char* inCode, const char* inFormat, const Arguments&... inArguments )
{
    if ( MaybeShouldLog( inCode ) )
        PrivateLogEnabled( inCode, kvr_format( inFormat, inArguments... ) );
}
} // namespace XErrorHandler

/// An assertion has failed: formats, logs, and beeps if "AssertBeep" is set. Control returns.
template<class... Arguments>
void XErrorHandlerDebugAssertMessage( const char* inFormat, const Arguments&... inArguments )
{
    XErrorHandler::PrivateAssertMessage( kvr_format( inFormat, inArguments... ) );
}

/// Logs to file and system log and plays the alert sound: a failure that a user should notice but
/// that needs no dialog.
template<class... Arguments>
void XErrorBeep( const char* inFormat, const Arguments&... inArguments )
{
    XErrorHandler::PrivateBeep( kvr_format( inFormat, inArguments... ) );
}

/// Logs "Assertion Failed: ..." with the condition as it stands here, and goes on.
#define XAssert( ... ) XAssertText( ( __VA_ARGS__ ), #__VA_ARGS__ )

/// The same with a given text, where the quoted text isn't this expression.
#define XAssertText( inCondition, inText )                                                                             \
    ( ( inCondition ) ? static_cast<void>( 0 )                                                                         \
                      : XErrorHandler::PrivateAssertionFailed( inText, "", __FILE__, __LINE__, 0 ) )
