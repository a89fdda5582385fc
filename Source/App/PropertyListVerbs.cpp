// "plist print", "plist convert" and "plist verify"; "plist compare" has its own file.
#include "App/PropertyListCompareVerb.h"
#include "App/PropertyListJSON.h"
#include "App/Verb.h"
#include "CFMethods/PropertyListText.h"
#include "CFMethods/PropertyListWalk.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <limits>

namespace
{
using Format = PropertyListInput::Format;

void ComplainAboutNotes( const PropertyListInput& inInput, const std::string& inPath, Output& ioOutput )
{
    for ( const XPlistNote& note : inInput.mNotes )
        ioOutput.Complain(
            fmt::format( "note on {}: {}, at byte {}", QuotedPath( inPath ), note.mMessage, note.mOffset ) );
}

class PrintVerb final : public Verb
{
public:
    explicit PrintVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "FILE", mPath, "A property list, or JSON; “-” is standard input" )
            ->required()
            ->type_name( "" );
        ioCommand.add_option( "--depth", mDepth, "Open only so many levels of containers" )
            ->type_name( "N" )
            ->check( CLI::Range( 0, 1'000'000 ).description( "" ) );
        ioCommand.add_flag( "--full", mFull, "Show data whole, in base64" );
        ioCommand.add_flag( "--json", mJSON, "Print the JSON form (see plist convert --help), always whole" );
        ioCommand.footer( "Integers show without a point, reals with one; dates are UTC.\n"
                          "Example: korvalen plist print --depth 2 \"Korvalen Macros.plist\"" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        const PropertyListInput input = ReadPropertyListFile( ioContext.mInput, mPath );
        Output& output = ioContext.mOutput;
        ComplainAboutNotes( input, mPath, output );
        if ( mJSON )
            output.JSON( input.mValue );
        else
            output.Bytes( PrintPropertyList(
                input.mValue, { mDepth, mFull, output.Sequence( Colour::kCyan ), output.Sequence( Colour::kNone ) } ) );
        return ExitStatus::kDone;
    }

private:
    std::string mPath;
    std::size_t mDepth = std::numeric_limits<std::size_t>::max();
    bool mFull = false, mJSON = false;
};

class ConvertVerb final : public Verb
{
public:
    explicit ConvertVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "FILE", mPath, "A property list, or JSON; “-” is standard input" )
            ->required()
            ->type_name( "" );
        ioCommand
            .add_option( "-o,--output", mOutputPath, "Write this file, which may be FILE itself; else standard output" )
            ->type_name( "OUT" );
        ioCommand.add_option( "--to,--format", mTo, "binary, xml or json" )
            ->required()
            ->type_name( "FORM" )
            ->check( CLI::IsMember( { "binary", "xml", "json" } ).description( "" ) );
        ioCommand.add_flag( "--lossy", mLossy, "Convert even if FILE holds what the result can't, as a doubled key" );
        ioCommand.footer( "JSON says what it has no form for: data {\"$data\": \"base64\"}; dates {\"$date\":\n"
                          "\"2024-01-31T09:30:00Z\"} or seconds since 2001 where no such text is exact; NaN and\n"
                          "infinity {\"$real\": \"nan\"}, \"inf\", \"-inf\". A key of such a name gets another $, as\n"
                          "\"$$data\". Reals have a point (5.0), integers none. That JSON is read back exactly.\n"
                          "Example: korvalen plist convert --to json Macros.plist -o Macros.json" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        const PropertyListInput input = ReadPropertyListFile( ioContext.mInput, mPath );
        ComplainAboutNotes( input, mPath, ioContext.mOutput );
        if ( not input.mNotes.empty() and not mLossy )
            throw FileTrouble(
                fmt::format( "{} holds what would be lost, so nothing was written; --lossy converts it all the same",
                    QuotedPath( mPath ) ) );
        if ( mTo == "json" )
            return Write( WritePropertyListJSON( input.mValue ), ioContext );
        if ( mTo == "binary" )
            return Write( WriteBinaryPropertyList( input.mValue ).View(), ioContext );
        const XPlistWriteResult xml = WriteXMLPropertyList( input.mValue );
        if ( xml.mFault )
            throw FileTrouble(
                fmt::format( "{} has no XML form, so nothing was written: {}; convert it to json instead",
                    QuotedPath( mPath ), *xml.mFault ) );
        return Write( xml.mBytes.View(), ioContext );
    }

private:
    ExitStatus Write( std::string_view inBytes, VerbContext& ioContext ) const
    {
        if ( mOutputPath == "-" )
        {
            if ( mTo == "binary" and ioContext.mOutput.IsTerminal() )
            {
                ioContext.mOutput.Complain( "the binary form isn't written to a terminal; name a file with -o" );
                return ExitStatus::kWrongUsage;
            }
            ioContext.mOutput.Bytes( inBytes );
            return ExitStatus::kDone;
        }
        const std::span bytes( reinterpret_cast<const std::uint8_t*>( inBytes.data() ), inBytes.size() );
        if ( const auto error = XAtomicFile::Write( mOutputPath, bytes ) )
            throw FileTrouble( error->Describe() +
                "; check that the folder is there, that you may write to it and that it has room, or name another file "
                "with -o" );
        return ExitStatus::kDone;
    }

    std::string mPath, mOutputPath = "-", mTo;
    bool mLossy = false;
};

// What a value consists of.
struct Statistics
{
    static constexpr std::size_t kTypes = std::size_t( XPlistType::kDictionary ) + 1;

    std::array<std::int64_t, kTypes> mCounts{};
    std::size_t mDepth = 0; // containers within containers, the root being 1

    void Leaf( const __SafeCFPropertyList& inValue, const XPlistPlace& )
    {
        ++mCounts[std::size_t( inValue.GetType() )];
    }
    bool Enter( const XPlistContainer& inContainer, const XPlistPlace& inPlace )
    {
        ++mCounts[std::size_t( inContainer.GetType() )];
        mDepth = std::max( mDepth, inPlace.mDepth + 1 );
        return true;
    }
    void Leave( const XPlistContainer&, const XPlistPlace& ) {}
};

class VerifyVerb final : public Verb
{
public:
    explicit VerifyVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "FILE", mPaths, "Property lists, or JSON; “-” is standard input" )
            ->required()
            ->type_name( "" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON: an array with an object for each file" );
        ioCommand.footer( "Status 1 if any file is invalid or can't be read.\n"
                          "Example: korvalen plist verify *.kvmacros" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        ExitStatus status = ExitStatus::kDone;
        XMutableArray facts;
        for ( const std::string& path : mPaths )
        {
            try
            {
                const XBytes bytes = ioContext.mInput.Read( path );
                const PropertyListInput input = ReadAnyPropertyList( bytes.Span() );
                if ( not input.mValue )
                    status = ExitStatus::kFailed;
                if ( mJSON )
                    facts.Append( Facts( path, input ) );
                else
                    Print( path, input, ioContext.mOutput );
            }
            catch ( const FileTrouble& trouble )
            {
                // The other files are still of interest.
                ioContext.mOutput.Complain( trouble.what() );
                status = ExitStatus::kFailed;
            }
        }
        if ( mJSON )
            ioContext.mOutput.JSON( facts.Seal() );
        return status;
    }

private:
    static Statistics StatisticsOf( const PropertyListInput& inInput )
    {
        Statistics statistics;
        WalkPropertyList( inInput.mValue, statistics );
        return statistics;
    }

    static void Print( const std::string& inPath, const PropertyListInput& inInput, Output& ioOutput )
    {
        const std::string name = inPath == "-" ? "standard input" : inPath;
        ioOutput.Text( name + ": " );
        if ( not inInput.mValue )
        {
            ioOutput.Text( "invalid", Colour::kRed );
            ioOutput.Line( fmt::format( " {}: {}", NameOf( inInput.mFormat ), *inInput.mFault ) );
            return;
        }
        const Statistics statistics = StatisticsOf( inInput );
        ioOutput.Text( "valid", Colour::kGreen );
        std::string line = fmt::format( " {}, depth {}", NameOf( inInput.mFormat ), statistics.mDepth );
        for ( std::size_t type = 0; type < Statistics::kTypes; ++type )
        {
            if ( statistics.mCounts[type] > 0 )
                line += fmt::format( ", {} {}", NameOf( XPlistType( type ) ), statistics.mCounts[type] );
        }
        ioOutput.Line( line );
        for ( const XPlistNote& note : inInput.mNotes )
        {
            ioOutput.Text( name + ": " );
            ioOutput.Text( "note", Colour::kYellow );
            ioOutput.Line( fmt::format( ": {}, at byte {}", note.mMessage, note.mOffset ) );
        }
    }

    static __SafeCFPropertyList Facts( const std::string& inPath, const PropertyListInput& inInput )
    {
        XMutableDictionary facts;
        facts.Set( CFSTR( "file" ), XPlistString::MakeUTF8( inPath ) );
        facts.Set( CFSTR( "format" ), XPlistString::MakeUTF8( NameOf( inInput.mFormat ) ) );
        facts.SetBoolean( CFSTR( "valid" ), bool( inInput.mValue ) );
        if ( inInput.mFault )
            facts.Set( CFSTR( "fault" ), XPlistString::MakeUTF8( *inInput.mFault ) );
        XMutableArray notes;
        for ( const XPlistNote& note : inInput.mNotes )
        {
            XMutableDictionary entry;
            entry.Set( CFSTR( "message" ), XPlistString::MakeUTF8( note.mMessage ) );
            entry.SetInteger( CFSTR( "offset" ), std::int64_t( note.mOffset ) );
            notes.Append( entry.Seal() );
        }
        facts.Set( CFSTR( "notes" ), notes.Seal() );
        if ( inInput.mValue )
        {
            const Statistics statistics = StatisticsOf( inInput );
            XMutableDictionary counts;
            for ( std::size_t type = 0; type < Statistics::kTypes; ++type )
                counts.SetInteger( XKey( NameOf( XPlistType( type ) ) ), statistics.mCounts[type] );
            facts.Set( CFSTR( "counts" ), counts.Seal() );
            facts.SetInteger( CFSTR( "depth" ), std::int64_t( statistics.mDepth ) );
        }
        return facts.Seal();
    }

    std::vector<std::string> mPaths;
    bool mJSON = false;
};
} // namespace

void AddPropertyListVerbs( CLI::App& ioProgram, VerbList& ioVerbs )
{
    CLI::App& plist = *ioProgram.add_subcommand( "plist", "Print, convert, verify and compare property lists" );
    plist.group( "Verbs" );
    plist.require_subcommand( 1 );
    plist.footer( "Example: korvalen plist print \"Korvalen Macros.plist\"" );
    ioVerbs.push_back( std::make_unique<PrintVerb>(
        *plist.add_subcommand( "print", "Print a property list as an indented tree" )->group( "Verbs" ) ) );
    ioVerbs.push_back( std::make_unique<ConvertVerb>(
        *plist.add_subcommand( "convert", "Convert between binary, XML and JSON without loss" )->group( "Verbs" ) ) );
    ioVerbs.push_back( std::make_unique<VerifyVerb>(
        *plist.add_subcommand( "verify", "Tell whether files are valid, and what they hold" )->group( "Verbs" ) ) );
    ioVerbs.push_back( std::make_unique<PropertyListCompareVerb>(
        *plist.add_subcommand( "compare", "Tell what differs between two property lists, by path" )
             ->group( "Verbs" ) ) );
}
