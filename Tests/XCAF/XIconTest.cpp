#include "XCAF/XIcon.h"

#include "Tests/Support/LogCapture.h"

#include <gtest/gtest.h>
#include <random>

namespace
{
__SafeCFPropertyList Saved( TextView inText )
{
    return __SafeCFPropertyList::String( inText );
}

std::string ResavedFrom( TextView inText )
{
    const auto saved = XIcon::FromSavedData( Saved( inText ) ).GetSavedData();
    return saved.AsString() ? saved.AsString()->GetUTF8() : "(none)";
}

__SafeCFPropertyList SomeData()
{
    const std::uint8_t bytes[] = { 0x89, 'P', 'N', 'G', 0 };
    return XPlistData::Make( bytes );
}
} // namespace

TEST( XIcon, EqualsSignsAreEncodedAndDecodedExactly )
{
    constexpr struct
    {
        TextView mPlain, mEncoded;
    } kCases[] = {
        { u"abcdef", u"abcdef" },
        { u"ab=cdef", u"ab#2cdef" },
        { u"ab=cd#ef", u"ab#2cd#1ef" },
        { u"ab=#ef", u"ab#2#1ef" },
        { u"ab#=ef", u"ab#1#2ef" },
        { u"ab###===ef", u"ab#1#1#1#2#2#2ef" },
        { u"", u"" },
        { u"#1#2", u"#11#12" },
    };
    for ( const auto& [plain, encoded] : kCases )
    {
        EXPECT_EQ( EncodeEquals( plain ), encoded ) << UTF8FromText( plain );
        EXPECT_EQ( DecodeEquals( encoded ), plain ) << UTF8FromText( encoded );
    }
    std::mt19937 random( 7 );
    for ( int round = 0; round < 2000; ++round )
    {
        Text text;
        for ( unsigned i = random() % 8; i > 0; --i )
            text += u"#=12a"[random() % 5];
        ASSERT_EQ( DecodeEquals( EncodeEquals( text ) ), text ) << UTF8FromText( text );
        ASSERT_EQ( EncodeEquals( text ).find( u'=' ), Text::npos );
    }
}

TEST( XIcon, EverySavedTextComesBackUnchanged )
{
    constexpr TextView kTexts[] = {
        u"KVEP-Folder",
        u"KVEP-Folder-",
        u"KVEP-Action-Pause-Until",
        u"KVEP-NoSuchIcon-Second",
        u"KVKL-com.example.keylayout.US-International",
        u"KVKL-",
        XIcon::kDefaultCustomIcon,
        u"KVEC=",
        u"KVEC=Hexagon",
        u"KVEC=Square=KVCOLOR:1,2,3,4=#2=144=0=4",
        u"KVEC=Square=red=A=many=0x10==-7=KVCOLOR:x=a tenth=an eleventh",
        u"KVEC=Square=KVCOLOR:1,2,3,4=\x2615=00144=+0=4.5=99999999999999999999",
    };
    for ( const TextView text : kTexts )
    {
        EXPECT_EQ( ResavedFrom( text ), UTF8FromText( text ) );
        EXPECT_FALSE( XIcon::CustomDataNeedsUpdating( Saved( text ) ) );
    }
}

TEST( XIcon, TheEarlierCustomFormIsRewrittenWithTheSameFields )
{
    constexpr struct
    {
        TextView mEarlier;
        const char* mNow;
    } kCases[] = {
        { u"KVEC-Rounded-KVCOLOR:0,0,0,0-A-144-0-4-0-KVCOLOR:257,257,257,257",
            "KVEC=Rounded=KVCOLOR:0,0,0,0=A=144=0=4=0=KVCOLOR:257,257,257,257" },
        { u"KVEC-Square-KVCOLOR:1,2,3,4-A-144-0-4-2", "KVEC=Square=KVCOLOR:1,2,3,4=A=144=0=4=2" },
        { u"KVEC-Square-KVCOLOR:1,2,3,4-A-144-0-4", "KVEC=Square=KVCOLOR:1,2,3,4=A=144=0=4" },
        // The character may be the separator, today's separator, a digit, several units or nothing.
        { u"KVEC-Square-KVCOLOR:1,2,3,4---144-0-4-0", "KVEC=Square=KVCOLOR:1,2,3,4=-=144=0=4=0" },
        { u"KVEC-Square-KVCOLOR:1,2,3,4-=-144-0-4-0", "KVEC=Square=KVCOLOR:1,2,3,4=#2=144=0=4=0" },
        { u"KVEC-Square-KVCOLOR:1,2,3,4-#-144-0-4-0", "KVEC=Square=KVCOLOR:1,2,3,4=#1=144=0=4=0" },
        { u"KVEC-Square-KVCOLOR:1,2,3,4-7-144-0-4-0", "KVEC=Square=KVCOLOR:1,2,3,4=7=144=0=4=0" },
        { u"KVEC-Square-KVCOLOR:1,2,3,4-7-144-0-4", "KVEC=Square=KVCOLOR:1,2,3,4=7=144=0=4" },
        { u"KVEC-Square-KVCOLOR:1,2,3,4-a-b-144-0-4-0", "KVEC=Square=KVCOLOR:1,2,3,4=a-b=144=0=4=0" },
        { u"KVEC-Square-KVCOLOR:1,2,3,4--144-0-4-0", "KVEC=Square=KVCOLOR:1,2,3,4==144=0=4=0" },
        { u"KVEC-Square-KVCOLOR:1,2,3,4-A-144--3-4-0", "KVEC=Square=KVCOLOR:1,2,3,4=A=144=-3=4=0" },
        { u"KVEC-Square-KVCOLOR:1,2,3,4-A-144-0--4-0-KVCOLOR:1,1,1,1",
            "KVEC=Square=KVCOLOR:1,2,3,4=A=144=0=-4=0=KVCOLOR:1,1,1,1" },
        // Only the marker is of the earlier form.
        { u"KVEC-Square=KVCOLOR:1,2,3,4=A=144=0=4", "KVEC=Square=KVCOLOR:1,2,3,4=A=144=0=4" },
        { u"KVEC-Square", "KVEC=Square" },
        { u"KVEC-", "KVEC=" },
    };
    for ( const auto& [earlier, now] : kCases )
    {
        EXPECT_TRUE( XIcon::CustomDataNeedsUpdating( Saved( earlier ) ) );
        EXPECT_EQ( ResavedFrom( earlier ), now ) << UTF8FromText( earlier );
    }
    EXPECT_FALSE( XIcon::CustomDataNeedsUpdating( SomeData() ) );
    EXPECT_FALSE( XIcon::CustomDataNeedsUpdating( nullptr ) );
}

TEST( XIcon, ABuiltInNameEndsAtTheFirstHyphen )
{
    const XIcon icon = XIcon::FromSavedData( Saved( u"KVEP-Action-Pause-Until" ) );
    EXPECT_EQ( icon.GetInternalName().GetUTF8(), "Action" );
    EXPECT_EQ( icon.GetInternalSecondPart().GetUTF8(), "Pause-Until" );
    EXPECT_EQ( icon, XIcon::InternalIcon( u"Action-Pause-Until" ) );
    EXPECT_TRUE( XIcon::InternalIcon( u"Folder" ).GetInternalSecondPart().IsNull() );
    EXPECT_FALSE( XIcon::InternalIcon( u"Folder-" ).GetInternalSecondPart().IsNull() );
    EXPECT_TRUE( XIcon::PlainTextIcon().IsInternalIcon() and XIcon::StyledTextIcon().IsInternalIcon() );
}

TEST( XIcon, ACustomIconIsTakenApartWithDefaults )
{
    const auto whole = XIcon::FromSavedData( Saved( XIcon::kDefaultCustomIcon ) ).GetSavedCharacterData();
    ASSERT_TRUE( whole );
    EXPECT_EQ( whole->mShape, XIconCustomIconShape::kRounded );
    EXPECT_EQ( whole->mColor.GetComponents(), ( XColor::Components{ 0, 0, 0, 0 } ) );
    EXPECT_EQ( whole->mText, u"A" );
    EXPECT_EQ( whole->mNumbers, ( std::array<std::int64_t, 3>{ 144, 0, 4 } ) );
    EXPECT_EQ( whole->mTextColor.GetComponents(), ( XColor::Components{ 257, 257, 257, 257 } ) );
    // Putting it together again gives the text it came from.
    const XIcon again( whole->mShape, whole->mColor, whole->mStyle, whole->mText, whole->mTextColor, whole->mNumbers );
    EXPECT_EQ( again, XIcon::FromSavedCharacterData( XIcon::kDefaultCustomIcon ) );

    const auto odd = XIcon::FromSavedCharacterData( u"KVEC=Hexagon=red=#2=12=x" ).GetSavedCharacterData();
    ASSERT_TRUE( odd );
    EXPECT_EQ( odd->mShape, XIconCustomIconShape::kSquare );
    EXPECT_FALSE( odd->mColor.GetComponents() );
    EXPECT_EQ( odd->mText, u"=" );
    EXPECT_EQ( odd->mNumbers, ( std::array<std::int64_t, 3>{ 12, 0, 4 } ) );
    EXPECT_FALSE( XIcon::FromSavedCharacterData( u"KVED=Square" ).Defined() );
    EXPECT_FALSE( XIcon::GetSavedDataFromCharacterString( u"KVED=Square" ) );
    EXPECT_EQ( XIcon::GetSavedDataFromCharacterString( u"KVEC=Rounded==#1" ).value().mText, u"#" );
    EXPECT_FALSE( XIcon::PlainTextIcon().GetSavedCharacterData() );
}

TEST( XIcon, ANewCharacterChangesNothingElse )
{
    const auto resaved = []( TextView inIcon, TextView inCharacter ) {
        const XIcon icon = XIcon::FromSavedCharacterData( inIcon ).WithNewTextCharacter( inCharacter );
        return icon.GetSavedData().AsString()->GetUTF8();
    };
    EXPECT_EQ( resaved( u"KVEC=Hexagon=red=A=x=y", u"=#" ), "KVEC=Hexagon=red=#2#1=x=y" );
    EXPECT_EQ( resaved( u"KVEC=Square", u"B" ), "KVEC=Square=KVCOLOR:0,0,0,0=B" );
    EXPECT_EQ( XIcon::PlainTextIcon().WithNewTextCharacter( u"B" ), XIcon::PlainTextIcon() ); // asserts
}

TEST( XIcon, AnImageIsSavedAsItsBytesUnlessOnlyTextsAreWanted )
{
    const XIcon icon = XIcon::FromSavedData( SomeData() );
    EXPECT_EQ( icon.GetSavedData(), SomeData() );
    EXPECT_FALSE( icon.GetSavedData( OnlySimpleSavedData::kYes ) );
    EXPECT_TRUE( XIcon::PlainTextIcon().GetSavedData( OnlySimpleSavedData::kYes ) );

    const XIcon application( XImage::FromSource( XImage::Source::kApplication, u"com.example.app" ) );
    EXPECT_TRUE( application.Defined() and application.IsApplicationIcon() );
    EXPECT_EQ( application.GetSaveFormat(), XIconSaveFormat::kCantSave );
    EXPECT_FALSE( application.GetSavedData() ); // asserts
}

TEST( XIcon, WhatIsNoSavedFormGivesAnUndefinedIcon )
{
    const __SafeCFPropertyList kValues[] = { Saved( u"" ), Saved( u"Folder" ), Saved( u"kvep-Folder" ),
        Saved( u"KVEC" ), Saved( u"KVEP" ), __SafeCFPropertyList::Integer( 5 ), nullptr };
    for ( const auto& value : kValues )
    {
        LogCapture lines;
        EXPECT_FALSE( XIcon::FromSavedData( value ).Defined() );
        const std::string shown = value.AsString() ? value.AsString()->GetUTF8() : value ? "number" : "(null)";
        const auto logged = lines.Take();
        ASSERT_EQ( logged.size(), 2u );
        EXPECT_EQ( logged[0], "savedData is " + shown );
        EXPECT_TRUE( logged[1].starts_with( "Assertion Failed: false" ) ) << logged[1];
    }
    EXPECT_FALSE( XIcon().GetSavedData() );
    EXPECT_FALSE( XIcon().DimmedIcon().Defined() );
    EXPECT_FALSE( XIcon( XImage() ).Defined() );
}

TEST( XIcon, DimmingShowsAndIsNeverSaved )
{
    const XIcon icon = XIcon::FromSavedData( Saved( XIcon::kDefaultCustomIcon ) );
    EXPECT_TRUE( icon.DimmedIcon().IsDimmed() );
    EXPECT_NE( icon.DimmedIcon(), icon );
    EXPECT_EQ( icon.DimmedIcon().UndimmedIcon(), icon );
    EXPECT_EQ( icon.DimmedIcon().GetSavedData(), icon.GetSavedData() );
}

TEST( XIcon, ACompositeHasItsDefinedPartsAndCannotBeSaved )
{
    const XIcon back = XIcon::InternalIcon( u"Folder" ), badge = XIcon::InternalIcon( u"PaletteBadge" );
    const XIcon both( back, badge );
    ASSERT_EQ( both.GetLayers().size(), 2u );
    EXPECT_EQ( both.GetLayers()[1], badge );
    EXPECT_EQ( both.GetSaveFormat(), XIconSaveFormat::kCantSave );
    EXPECT_EQ( XIcon( back, badge, badge ).GetLayers().size(), 3u );

    LogCapture lines;
    EXPECT_EQ( XIcon( back, XIcon() ).GetLayers().size(), 1u );
    EXPECT_FALSE( XIcon( XIcon(), XIcon(), XIcon() ).Defined() );
    EXPECT_FALSE( both.GetSavedData() );
    const char* const kConditions[] = { "foregroundIcon.Defined()", "backgroundIcon.Defined()",
        "foregroundIcon1.Defined()", "foregroundIcon2.Defined()", "mSaveFormat != XIconSaveFormat::kCantSave" };
    const auto logged = lines.Take();
    ASSERT_EQ( logged.size(), std::size( kConditions ) );
    for ( std::size_t i = 0; i < logged.size(); ++i )
        EXPECT_TRUE( logged[i].starts_with( std::string( "Assertion Failed: " ) + kConditions[i] ) ) << logged[i];
}

TEST( XIcon, KeyboardLayoutsAreSharedOnceCached )
{
    const Text kLayouts[] = { u"com.example.German", u"com.example.French" };
    XIcon::CacheAllKeyboardLayoutIcons( kLayouts );
    EXPECT_EQ(
        XIcon( XIconKeyboardLayout(), u"com.example.German" ).GetKeyboardLayout().GetUTF8(), "com.example.German" );
    EXPECT_EQ(
        XIcon( XIconKeyboardLayout(), u"com.example.Greek" ).GetKeyboardLayout().GetUTF8(), "com.example.Greek" );
    XIcon::CacheAllKeyboardLayoutIcons( {} );
    EXPECT_EQ(
        XIcon( XIconKeyboardLayout(), u"com.example.German" ).GetSavedData(), Saved( u"KVKL-com.example.German" ) );
}

TEST( XColor, KeepsItsTextAndReadsFourNumbers )
{
    constexpr struct
    {
        TextView mText;
        bool mReads;
    } kCases[] = {
        { u"KVCOLOR:0,0,0,0", true },
        { u"KVCOLOR:257,257,257,257", true },
        { u"KVCOLOR:0.5,-1,1e2,4", true },
        { u"KVCOLOR:1,2,3", false },
        { u"KVCOLOR:1,2,3,4,5", false },
        { u"KVCOLOR:1,2,3,", false },
        { u"KVCOLOR:1, 2,3,4", false },
        { u"KVCOLOR:nan,0,0,0", false },
        { u"kvcolor:1,2,3,4", false },
        { u"", false },
    };
    for ( const auto& [text, reads] : kCases )
    {
        EXPECT_EQ( XColor::FromText( text ).GetText(), text );
        EXPECT_EQ( XColor::FromText( text ).GetComponents().has_value(), reads ) << UTF8FromText( text );
    }
    const XColor::Components components{ 1, 0.1, -3, 257 };
    EXPECT_EQ( XColor( components ).GetText(), u"KVCOLOR:1,0.1,-3,257" );
    EXPECT_EQ( XColor( components ).GetComponents(), components );
}

TEST( XIcon, AFontStyleThatIsNotKnownHasTheSystemsFont )
{
    EXPECT_EQ( IconFontWithSize( XIconFontStyle::kEmoji, 12 ).mName, u"Apple Color Emoji" );
    EXPECT_EQ( IconFontWithSize( XIconFontStyle::kChancery, 12 ).mName, u"Apple Chancery" );
    EXPECT_EQ( IconFontWithSize( XIconFontStyle( 77 ), 12 ).mName, u"" );
    EXPECT_EQ( IconFontWithSize( XIconFontStyle( 77 ), 12 ).mSize, 12 );
}
