#include "App/PropertyListCompareVerb.h"

#include "CFMethods/PropertyListDifference.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace
{
using Kind = XPlistDifference::Kind;

void PrintDifference( const XPlistDifference& inDifference, Output& ioOutput )
{
    const std::string oldPath = PathText( inDifference.mPath, XPlistSide::kOld );
    const std::string newPath = PathText( inDifference.mPath, XPlistSide::kNew );
    switch ( inDifference.mKind )
    {
    case Kind::kAdded:
        ioOutput.Text( "added   ", Colour::kGreen );
        ioOutput.Line( fmt::format( "{}: {}", newPath, BriefText( inDifference.mNew ) ) );
        break;
    case Kind::kRemoved:
        ioOutput.Text( "removed ", Colour::kRed );
        ioOutput.Line( fmt::format( "{}: {}", oldPath, BriefText( inDifference.mOld ) ) );
        break;
    case Kind::kChanged:
        ioOutput.Text( "changed ", Colour::kYellow );
        ioOutput.Line( fmt::format( "{}: {} → {}", oldPath == newPath ? oldPath : oldPath + " → " + newPath,
            BriefText( inDifference.mOld ), BriefText( inDifference.mNew ) ) );
        break;
    }
}

__SafeCFPropertyList Facts( const XPlistDifferences& inDifferences )
{
    XMutableArray list;
    for ( const XPlistDifference& difference : inDifferences.mDifferences )
    {
        XMutableDictionary facts;
        facts.Set( CFSTR( "kind" ), XPlistString::MakeUTF8( NameOf( difference.mKind ) ) );
        if ( difference.mKind != Kind::kAdded )
            facts.Set( CFSTR( "oldPath" ), XPlistString::MakeUTF8( PathText( difference.mPath, XPlistSide::kOld ) ) );
        if ( difference.mKind != Kind::kRemoved )
            facts.Set( CFSTR( "newPath" ), XPlistString::MakeUTF8( PathText( difference.mPath, XPlistSide::kNew ) ) );
        // A null value sets nothing.
        facts.Set( CFSTR( "old" ), difference.mOld );
        facts.Set( CFSTR( "new" ), difference.mNew );
        list.Append( facts.Seal() );
    }
    XMutableDictionary facts;
    facts.SetInteger( CFSTR( "count" ), std::int64_t( inDifferences.mCount ) );
    facts.Set( CFSTR( "differences" ), list.Seal() );
    return facts.Seal();
}
} // namespace

PropertyListCompareVerb::PropertyListCompareVerb( CLI::App& ioCommand ) : Verb( ioCommand )
{
    ioCommand.add_option( "OLD", mOldPath, "A property list, or JSON; “-” is standard input" )
        ->required()
        ->type_name( "" );
    ioCommand.add_option( "NEW", mNewPath, "The one to compare it with" )->required()->type_name( "" );
    ioCommand.add_flag( "--json", mJSON, "Print the differences as JSON, with both values whole" );
    ioCommand.footer( "A line for each difference: added, removed or changed, the path, the values shortened.\n"
                      "Elements of arrays are aligned: up to 1,000 by 1,000 fully, beyond that around those that\n"
                      "are equal and single; where one moved, both paths show. Files of different form are\n"
                      "compared by what they say. Status 0: equal; 1: different.\n"
                      "Example: korvalen plist compare \"Korvalen Macros.plist\" Backup.plist" );
}

ExitStatus PropertyListCompareVerb::Run( VerbContext& ioContext )
{
    Output& output = ioContext.mOutput;
    if ( mOldPath == "-" and mNewPath == "-" )
    {
        output.Complain( "standard input can only be one of the two; name a file for the other" );
        return ExitStatus::kWrongUsage;
    }
    const PropertyListInput old = ReadPropertyListFile( ioContext.mInput, mOldPath );
    const PropertyListInput now = ReadPropertyListFile( ioContext.mInput, mNewPath );
    const XPlistDifferences differences = FindDifferences( old.mValue, now.mValue );
    if ( mJSON )
        output.JSON( Facts( differences ) );
    else
    {
        for ( const XPlistDifference& difference : differences.mDifferences )
            PrintDifference( difference, output );
    }
    if ( differences.mCount > differences.mDifferences.size() )
        output.Complain( fmt::format( "only the first {} of {} differences were shown; compare smaller parts",
            differences.mDifferences.size(), differences.mCount ) );
    return differences.mCount == 0 ? ExitStatus::kDone : ExitStatus::kFailed;
}
