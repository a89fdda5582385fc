// The one exception type: the failed expression and where it stood. It is thrown where a stored
// element can't be understood and caught where one element can be lost.
#pragma once

#include "CFMethods/Text.h"

#include <exception>
#include <string>

class XException : public std::exception
{
public:
    /// The message is the source text of the failed condition.
    XException( TextView inMessage, const char* inFile, long inLine );
    XException( const char* inMessage, const char* inFile, long inLine );

    [[nodiscard]] const Text& GetMessage() const { return mMessage; }
    [[nodiscard]] const Text& GetLocation() const { return mLocation; } ///< "%s:%d" of file and line
    [[nodiscard]] const char* what() const noexcept override { return mWhat.c_str(); }

    /// Writes "WARNING: Uncaught Exception in %@: %@, %@" to the log file and the system log. Any thread.
    void Log( TextView inWhere ) const;
    /// If this application is the active one, shows a critical alert; then logs. Main thread.
    void WarnUncaught( TextView inWhere ) const;
    /// Inside a catch block: logs whatever is being handled, as Log does. Any thread.
    static void LogCurrent( TextView inWhere ) noexcept;

private:
    Text mLocation;
    Text mMessage;
    std::string mWhat;
};

/// Throws when the condition fails; the message is the condition as it stands here, so a required
/// read quotes itself: XThrowIfNot( dictionary->Get( CFSTR("Triggers"), triggers ) ).
#define XThrowIfNot( ... )                                                                                             \
    do                                                                                                                 \
    {                                                                                                                  \
        if ( not( __VA_ARGS__ ) ) [[unlikely]]                                                                         \
            throw XException( #__VA_ARGS__, __FILE__, __LINE__ );                                                      \
    } while ( false )

/// The same with a given text, for messages that are no expression here.
#define XThrowIfNotText( inCondition, inText )                                                                         \
    do                                                                                                                 \
    {                                                                                                                  \
        if ( not( inCondition ) ) [[unlikely]]                                                                         \
            throw XException( inText, __FILE__, __LINE__ );                                                            \
    } while ( false )
