#include "App/DifferenceText.h"

#include <fmt/format.h>

namespace
{
using Kind = XPlistDifference::Kind;

void PrintDifference( const XPlistDifference& inDifference, const PathNamer& inNamer, Output& ioOutput )
{
    const auto name = [&]( XPlistSide side ) {
        return inNamer ? inNamer( inDifference.mPath, side ) : PathText( inDifference.mPath, side );
    };
    const std::string oldPath = name( XPlistSide::kOld ), newPath = name( XPlistSide::kNew );
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
__SafeCFPropertyList FactsOf( const XPlistDifferences& inDifferences, const PathNamer& inNamer )
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
        if ( inNamer )
            facts.Set( CFSTR( "place" ),
                XPlistString::MakeUTF8( inNamer(
                    difference.mPath, difference.mKind == Kind::kRemoved ? XPlistSide::kOld : XPlistSide::kNew ) ) );
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

void ShowDifferences(
    const XPlistDifferences& inDifferences, bool inAsJSON, Output& ioOutput, const PathNamer& inNamer )
{
    if ( inAsJSON )
        ioOutput.JSON( FactsOf( inDifferences, inNamer ) );
    else
    {
        for ( const XPlistDifference& difference : inDifferences.mDifferences )
            PrintDifference( difference, inNamer, ioOutput );
    }
    if ( inDifferences.mCount > inDifferences.mDifferences.size() )
        ioOutput.Complain( fmt::format( "only the first {} of {} differences were shown; compare smaller parts",
            inDifferences.mDifferences.size(), inDifferences.mCount ) );
}
