#include "Utility/Work/TaskEnvironment.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <unistd.h>
#include <unordered_map>
#include <utility>

extern char** environ;

namespace
{
constexpr std::string_view kTooLarge = "Too Large For Environment";

struct Entry
{
    std::string mName, mValue;
    std::optional<Text> mVariable; // of the user, who is told when it gives way
    bool mIsRemoved = false;

    [[nodiscard]] std::size_t Size() const { return mName.size() + 1 + mValue.size() + 1; }
};

// Perl's as well as the loader's: both run code of someone else's choice inside the command.
bool ChangesWhatRuns( std::string_view inName )
{
    return inName.starts_with( "LD_" ) or inName.starts_with( "DYLD_" ) or inName == "PERL5OPT" or
        inName == "PERL5LIB" or inName == "PERLLIB" or inName == "PERL5DB";
}

class Maker
{
public:
    void AddInherited( std::string_view inEntry, bool inDropOwnVariables )
    {
        const std::size_t equals = inEntry.find( '=', 1 );
        if ( equals == std::string_view::npos )
            return;
        const std::string_view name = inEntry.substr( 0, equals );
        const bool isOwn = name.starts_with( "KVVAR_" ) or name.starts_with( "KVPARAM_" );
        if ( ChangesWhatRuns( name ) or ( inDropOwnVariables and isOwn ) )
            return;
        // Of equal names everybody reads the first; a second would come to light when a variable replaces it.
        if ( mPlaces.try_emplace( std::string( name ), mEntries.size() ).second )
            mEntries.push_back( { std::string( name ), std::string( inEntry.substr( equals + 1 ) ), {} } );
    }

    void AddVariable( const XTaskVariable& inVariable )
    {
        Add( u"KVVAR_" + inVariable.mName, inVariable );
        constexpr TextView kPlain = u"ENV_";
        if ( TextView( inVariable.mName ).starts_with( kPlain ) and inVariable.mName.size() > kPlain.size() )
            Add( inVariable.mName.substr( kPlain.size() ), inVariable );
    }

    void Add( Text inName, const XTaskVariable& inVariable )
    {
        std::replace( inName.begin(), inName.end(), u' ', u'_' );
        const bool isName = not FindLoneSurrogate( inName ) and inName.find( u'=' ) == Text::npos and
            inName.find( u'\0' ) == Text::npos;
        if ( not isName or inVariable.mText.find( u'\0' ) != Text::npos )
        {
            XErrorHandler::PrivateMaybeLogFormat( "display", "Conversion failed for: %@", inVariable.mName );
            return;
        }
        std::string name = UTF8FromText( inName );
        // Who names a variable so wants it, but may have it from a macro of somebody else.
        if ( ChangesWhatRuns( name ) )
            XErrorHandler::PrivateMaybeLogFormat(
                "display", "Variable “%@” changes what commands run", inVariable.mName );
        // The later of equal names counts.
        if ( const auto [position, isNew] = mPlaces.try_emplace( name, mEntries.size() ); not isNew )
        {
            mEntries[position->second].mIsRemoved = true;
            position->second = mEntries.size();
        }
        mEntries.push_back( { std::move( name ), UTF8FromText( inVariable.mText ), inVariable.mName } );
    }

    // The largest first, so that as few as possible give way.
    void Fit()
    {
        for ( const Entry& entry : mEntries )
            mSize += entry.mIsRemoved ? 0 : entry.Size();
        const auto isLong = []( const Entry& inEntry ) {
            return inEntry.mVariable and inEntry.mValue.size() > kTooLarge.size();
        };
        GiveWay( isLong, []( Entry& ioEntry ) { ioEntry.mValue = kTooLarge; } );
        if ( not IsTooLarge() )
            return;
        XErrorHandler::PrivateMaybeLogFormat(
            "display", "So many variables that environment is too large even if each is small" );
        // The user's go before the process's, which commands count on.
        const auto remove = []( Entry& ioEntry ) { ioEntry.mIsRemoved = true; };
        GiveWay( []( const Entry& inEntry ) { return inEntry.mVariable.has_value(); }, remove );
        GiveWay( []( const Entry& ) { return true; }, remove );
    }

    [[nodiscard]] std::vector<std::string> Take()
    {
        std::vector<std::string> result;
        for ( const Entry& entry : mEntries )
        {
            if ( not entry.mIsRemoved )
                result.push_back( entry.mName + "=" + entry.mValue );
        }
        return result;
    }

private:
    [[nodiscard]] bool IsTooLarge() const { return mSize >= XTaskEnvironment::kMaxBytes; }

    template<class Which, class Change>
    void GiveWay( const Which& inWhich, const Change& inChange )
    {
        std::vector<Entry*> candidates;
        for ( Entry& entry : mEntries )
        {
            if ( not entry.mIsRemoved and inWhich( entry ) )
                candidates.push_back( &entry );
        }
        std::stable_sort( candidates.begin(), candidates.end(),
            []( const Entry* a, const Entry* b ) { return a->Size() > b->Size(); } );
        for ( Entry* entry : candidates )
        {
            if ( not IsTooLarge() )
                return;
            LogExcluded( *entry );
            mSize -= entry->Size();
            inChange( *entry );
            mSize += entry->mIsRemoved ? 0 : entry->Size();
        }
    }

    static void LogExcluded( const Entry& inEntry )
    {
        XErrorHandler::PrivateMaybeLogFormat( "display",
            "Variable “%@” excluded from environment to ensure the environment is not too large",
            inEntry.mVariable ? *inEntry.mVariable : TextFromUTF8( inEntry.mName ) );
    }

    std::vector<Entry> mEntries;
    std::unordered_map<std::string, std::size_t> mPlaces;
    std::size_t mSize = 0;
};
} // namespace

std::vector<std::string> XTaskEnvironment::Make( const std::vector<std::string>& inProcessEnvironment ) const
{
    Maker maker;
    for ( const std::string& entry : inProcessEnvironment )
        maker.AddInherited( entry, mDropOwnVariables );
    for ( const XTaskVariable& variable : mVariables )
        maker.AddVariable( variable );
    if ( mInstance )
        maker.Add( u"KVINSTANCE", { u"KVINSTANCE", *mInstance } );
    for ( const XTaskVariable& parameter : mParameters )
        maker.Add( u"KVPARAM_" + parameter.mName, parameter );
    maker.Fit();
    return maker.Take();
}

std::vector<std::string> XTaskEnvironment::OfProcess()
{
    std::vector<std::string> result;
    for ( char** entry = environ; entry and *entry; ++entry )
        result.emplace_back( *entry );
    return result;
}
