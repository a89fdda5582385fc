// Where the program's words go. Facts go to standard output, complaints to standard error. Names out of
// files are strangers' text: what goes through Text and Complain can't command the terminal, whatever it
// holds. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

enum class Colour : std::uint8_t { kNone, kRed, kGreen, kYellow, kCyan, kBold };

class Output
{
public:
    struct Terminals
    {
        bool mOutputIsTerminal = false;
        bool mColours = false;
    };

    Output( std::ostream& ioOutput, std::ostream& ioErrors, Terminals inTerminals )
        : mOutput( ioOutput ),
          mErrors( ioErrors ),
          mTerminals( inTerminals )
    {}

    /// UTF-8 on standard output, control characters made visible.
    void Text( std::string_view inUTF8, Colour inColour = Colour::kNone );
    void EndLine();
    /// Text and the end of the line.
    void Line( std::string_view inUTF8, Colour inColour = Colour::kNone );
    /// Bytes as they are: files, and text that is known to be safe.
    void Bytes( std::string_view inBytes );
    /// What another process of the program has to complain about, as it came.
    void ErrorBytes( std::string_view inBytes );
    /// Hands on what was written so far, for a reader who waits for it.
    void Flush();
    /// Facts as JSON: the JSON form of property lists.
    void JSON( const __SafeCFPropertyList& inFacts );

    /// "korvalen: " and one sentence on standard error. It says what failed, on which file or element, and what the
    /// user can do. Control characters are made visible.
    void Complain( std::string_view inSentence );

    [[nodiscard]] bool IsTerminal() const { return mTerminals.mOutputIsTerminal; }
    /// The sequence that begins a colour, kNone ending it; "" when there are no colours.
    [[nodiscard]] std::string_view Sequence( Colour inColour ) const;

private:
    std::ostream& mOutput;
    std::ostream& mErrors;
    const Terminals mTerminals;
};

/// Colours are for terminals that know them and users who want them: NO_COLOR, unless it is empty, and TERM
/// missing or "dumb" say no. The arguments are the values of those variables, or null.
[[nodiscard]] bool WantsColours( bool inIsTerminal, const char* inNoColor, const char* inTerm );

/// A path or "-" in quotes for a sentence, as “a/b.plist” or standard input.
[[nodiscard]] std::string QuotedPath( std::string_view inPath );
