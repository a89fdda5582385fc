#include "XCAF/XApplicationIdentifier.h"

#include "Platform/Applications.h"
#include "Platform/Platform.h"
#include "XCAF/XException.h"

#include <gtest/gtest.h>

namespace
{
__SafeCFPropertyList Dictionary( std::initializer_list<std::pair<const char*, __SafeCFPropertyList>> inEntries )
{
    XMutableDictionary dictionary;
    for ( const auto& [key, value] : inEntries )
        dictionary.Set( XKey( key ), value );
    return dictionary.Seal();
}

__SafeCFPropertyList String( TextView inText )
{
    return __SafeCFPropertyList::String( inText );
}

/// Knows one application, whose reference is the text "here".
class OneApplication final : public XApplications
{
public:
    [[nodiscard]] std::optional<Facts> ResolveApplicationAlias( const __SafeCFPropertyList& inAlias ) const override
    {
        return inAlias.Equals( String( u"here" ) ) ? FindApplication( u"com.example.Known" ) : std::nullopt;
    }
    [[nodiscard]] __SafeCFPropertyList RefindApplicationAlias( TextView inName, TextView inBundle ) const override
    {
        return inName == u"Known" or inBundle == u"com.example.Known" ? String( u"here" ) : nullptr;
    }
    [[nodiscard]] std::optional<Facts> FindApplication( TextView inBundle ) const override
    {
        if ( inBundle != u"com.example.Known" )
            return std::nullopt;
        return Facts{ u"Known Application", u"com.example.Known", u"/Known" };
    }
};
} // namespace

TEST( XApplicationIdentifier, ComesBackAsItWasSavedOrNormalised )
{
    const __SafeCFPropertyList file = Dictionary( { { "any", __SafeCFPropertyList::Real( 2.5 ) } } );
    const struct
    {
        __SafeCFPropertyList mStored, mSaved;
    } kCases[] = {
        { Dictionary( {} ), Dictionary( {} ) },
        { Dictionary( { { "Name", String( u"Mail" ) }, { "BundleIdentifier", String( u"com.example.mail" ) },
              { "NewFile", file }, { "Match", String( u"BundleID" ) } } ),
            Dictionary( { { "Name", String( u"Mail" ) }, { "BundleIdentifier", String( u"com.example.mail" ) },
                { "NewFile", file }, { "Match", String( u"BundleID" ) } } ) },
        { Dictionary( { { "Name", String( u"iTunes" ) }, { "BundleIdentifier", String( u"com.apple.iTunes" ) } } ),
            Dictionary( { { "Name", String( u"Music" ) }, { "BundleIdentifier", String( u"com.apple.Music" ) } } ) },
        { Dictionary( { { "Name", String( u"" ) }, { "BundleIdentifier", __SafeCFPropertyList::Integer( 1 ) },
              { "NewFile", __SafeCFPropertyList::Boolean( false ) }, { "Match", String( u"Default" ) } } ),
            Dictionary( { { "NewFile", __SafeCFPropertyList::Boolean( false ) } } ) },
        { Dictionary( { { "Name", String( u"X" ) }, { "Match", String( u"path" ) } } ),
            Dictionary( { { "Name", String( u"X" ) } } ) },
        { Dictionary( { { "Match", String( u"Path" ) } } ), Dictionary( { { "Match", String( u"Path" ) } } ) },
    };
    int row = 0;
    for ( const auto& [stored, saved] : kCases )
    {
        const auto application = XApplicationIdentifier::CreateFromPropertyList( stored );
        EXPECT_EQ( application.CopyToPropertyList(), saved ) << "row " << row;
        EXPECT_EQ( XApplicationIdentifier::CreateFromPropertyList( saved ).CopyToPropertyList(), saved ) << row;
        ++row;
    }
}

TEST( XApplicationIdentifier, AReferenceIsReplacedOnlyByOneThatIsFound )
{
    OneApplication service;
    Platform platform = Platform::Current();
    platform.SetApplications( service );
    const Platform::Substitute substitute( platform );
    const struct
    {
        TextView mName, mFile, mSaved;
    } kCases[] = {
        { u"Known", u"here", u"here" },
        { u"Known", u"gone", u"here" },
        { u"Other", u"gone", u"gone" },
    };
    for ( const auto& [name, file, saved] : kCases )
    {
        const auto stored = Dictionary( { { "Name", String( name ) }, { "NewFile", String( file ) } } );
        EXPECT_EQ( XApplicationIdentifier::CreateFromPropertyList( stored ).GetFile(), String( saved ) );
    }
    // Without a reference none is made up.
    const auto none =
        XApplicationIdentifier::CreateFromPropertyList( Dictionary( { { "Name", String( u"Known" ) } } ) );
    EXPECT_FALSE( none.GetFile() );

    EXPECT_EQ( XApplicationIdentifier( u"Shown", u"com.example.Known" ).GetDisplayName(), u"Shown" );
    EXPECT_EQ( XApplicationIdentifier( nullptr, u"com.example.Known" ).GetDisplayName(), u"Known Application" );
    EXPECT_EQ( XApplicationIdentifier( u"", nullptr, String( u"here" ) ).GetDisplayName(), u"Known Application" );
    EXPECT_EQ( XApplicationIdentifier( nullptr, u"com.example.Other" ).GetDisplayName(), u"com.example.Other" );
    EXPECT_EQ( XApplicationIdentifier().GetDisplayName(), u"" );
}

TEST( XApplicationIdentifier, TheFileCountsOnlyWhereNothingElseTellsApart )
{
    using enum ApplicationIdentifierMatchType;
    const auto a = String( u"a" ), b = String( u"b" );
    const struct
    {
        XApplicationIdentifier mLeft, mRight;
        int mOrder;
    } kCases[] = {
        { { u"X", u"x", a }, { u"X", u"x", b }, 0 },
        { { u"X", u"x", a, kPath }, { u"X", u"x", b, kPath }, -1 },
        { { nullptr, u"", a }, { u"", nullptr, b }, -1 },
        { { nullptr, nullptr, a }, { nullptr, nullptr, nullptr }, 1 },
        { { u"X", u"x" }, { u"X", u"x", nullptr, kBundleID }, -1 },
        { { u"X", u"x" }, { u"x", u"x" }, -1 },
        { { u"Z", nullptr }, { u"A", u"a" }, -1 },
        { { u"X", nullptr }, { u"X", u"" }, 0 },
    };
    int row = 0;
    for ( const auto& [left, right, order] : kCases )
    {
        EXPECT_EQ( left.CompareWithSame( right ), order ) << "row " << row;
        EXPECT_EQ( right.CompareWithSame( left ), -order ) << "row " << row++;
    }
}

TEST( XApplicationIdentifier, WhatIsNoDictionaryThrowsTheReadItself )
{
    for ( const auto& value : { String( u"Mail" ), __SafeCFPropertyList() } )
    {
        try
        {
            (void)XApplicationIdentifier::CreateFromPropertyList( value );
            ADD_FAILURE();
        }
        catch ( const XException& exception )
        {
            EXPECT_EQ( exception.GetMessage(), u"dictionary && dictionary->IsCorrectTypeID()" );
        }
    }
}

TEST( XApplicationList, ABadElementIsLostAndABadListThrowsAndChangesNothing )
{
    XMutableArray array;
    array.Append( Dictionary( { { "Name", String( u"One" ) } } ) );
    array.Append( __SafeCFPropertyList::Integer( 2 ) );
    array.Append( Dictionary( { { "Name", String( u"Three" ) } } ) );
    XApplicationList list;
    list.LoadFromPropertyList( array.Seal() );
    EXPECT_EQ( list.GetDisplayNames(), ( std::vector<Text>{ u"One", u"Three" } ) );

    try
    {
        list.LoadFromPropertyList( Dictionary( {} ) );
        ADD_FAILURE();
    }
    catch ( const XException& exception )
    {
        EXPECT_EQ( exception.GetMessage(), u"apps && apps->IsCorrectTypeID()" );
    }
    EXPECT_EQ( list.GetApplications().size(), 2u );

    XApplicationList again;
    again.LoadFromPropertyList( list.CopyToPropertyList() );
    EXPECT_EQ( again.CompareWithSame( list ), 0 );
    again.Append( XApplicationIdentifier( u"Four", nullptr ) );
    EXPECT_EQ( again.CompareWithSame( list ), 1 );
    EXPECT_EQ( list.CompareWithSame( again ), -1 );
}
