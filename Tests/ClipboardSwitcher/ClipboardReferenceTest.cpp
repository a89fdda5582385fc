#include "FakeClipboardNames.h"

#include "Utility/Search/StringSearchee.h"

#include <gtest/gtest.h>

TEST( ClipboardReference, KeepsWhatItHoldsWithoutAStore )
{
    ClipboardReference reference( XText( u"1" ), XText( u"Notes" ) );
    for ( const bool force : { false, true } )
    {
        EXPECT_FALSE( reference.UpdateClipboardReference( force ) );
        EXPECT_EQ( reference.GetClipboardUID(), XText( u"1" ) );
        EXPECT_EQ( reference.GetClipboardName(), XText( u"Notes" ) );
    }
}

TEST( ClipboardReference, AChangeAsksForAReload )
{
    int asked = 0;
    ClipboardReference::SetAskForReload( [&asked] { ++asked; } );
    const FakeClipboardNames store{ { u"1", u"Notes" } };
    ClipboardReference reference{ XText( u"1" ), XText( u"Old" ) };
    (void)reference.UpdateClipboardReference( false );
    EXPECT_EQ( asked, 1 );
    (void)reference.UpdateClipboardReference( false );
    EXPECT_EQ( asked, 1 );
    ClipboardReference::SetAskForReload( {} );
}

TEST( ClipboardReference, FollowsTheStore )
{
    constexpr struct
    {
        const char* mRule;
        const char16_t *mUID, *mName;
        bool mForce;
        const char16_t *mNewUID, *mNewName;
    } kCases[] = {
        { "a clipboard that stands as it was", u"1", u"Notes", false, u"1", u"Notes" },
        { "a renamed one gives its new name", u"1", u"Old", false, u"1", u"Notes" },
        { "a UID tells the name", u"1", u"", false, u"1", u"Notes" },
        { "a name tells the UID", u"", u"Notes", false, u"1", u"Notes" },
        { "a UID that is gone gives way to the clipboard of the name", u"7", u"Notes", false, u"1", u"Notes" },
        { "a missing one is made with its UID", u"8", u"New", false, u"8", u"New" },
        { "a missing one without UID is made", u"", u"New", false, u"Made-New", u"New" },
        { "nothing is the unnamed one", u"", u"", false, u"2", u"Unnamed Clipboard" },
        { "the unnamed one is found", u"", u"Unnamed Clipboard", false, u"2", u"Unnamed Clipboard" },
        { "the deprecated one is the unnamed one", u"", u"Default Clipboard", false, u"2", u"Unnamed Clipboard" },
        { "a UID that is gone, unnamed", u"9", u"Unnamed Clipboard", false, u"2", u"Unnamed Clipboard" },
        { "a UID that is gone, without any name", u"9", u"", false, u"9", u"Unnamed Clipboard" },
        { "forced, the name counts", u"2", u"Notes", true, u"1", u"Notes" },
        { "forced, nothing is the unnamed one", u"1", u"", true, u"2", u"Unnamed Clipboard" },
        { "forced, the deprecated one likewise", u"1", u"Default Clipboard", true, u"2", u"Unnamed Clipboard" },
    };
    for ( const auto& row : kCases )
    {
        const FakeClipboardNames store{ { u"1", u"Notes" }, { u"2", u"Unnamed Clipboard" } };
        ClipboardReference reference{ XText( row.mUID ), XText( row.mName ) };
        const ClipboardReference updated = reference.Updated();
        const bool changed = reference.UpdateClipboardReference( row.mForce );
        EXPECT_EQ( reference.GetClipboardUID().GetText(), row.mNewUID ) << row.mRule;
        EXPECT_EQ( reference.GetClipboardName().GetText(), row.mNewName ) << row.mRule;
        EXPECT_EQ( changed, Text( row.mUID ) != row.mNewUID or Text( row.mName ) != row.mNewName ) << row.mRule;
        if ( not row.mForce )
        {
            EXPECT_EQ( updated.CompareWithSame( reference ), 0 ) << row.mRule;
        }
        if ( store.StrictGetClipboardNameByUID( row.mNewUID ) )
        {
            EXPECT_FALSE( reference.UpdateClipboardReference( false ) ) << row.mRule;
        }
    }
}

TEST( ClipboardReference, AnUnnamedOneStaysWhenTheStoreHasNone )
{
    const FakeClipboardNames store;
    ClipboardReference reference( XText( u"9" ), XText( u"Unnamed Clipboard" ) );
    EXPECT_FALSE( reference.UpdateClipboardReference( false ) );
    EXPECT_EQ( reference.GetClipboardUID(), XText( u"9" ) );
    EXPECT_TRUE( store.mNamesByUID.empty() );
}

TEST( ClipboardReference, UIDsAreInUseWhileAReferenceHoldsThem )
{
    using CR = ClipboardReference;
    EXPECT_FALSE( CR::ClipboardUIDInUse( u"A" ) );
    {
        CR first( XText( u"A" ), XText( u"N" ) );
        CR second = first;
        EXPECT_TRUE( CR::ClipboardUIDInUse( u"A" ) );
        first.Set( XText( u"B" ), XText( u"N" ) );
        EXPECT_TRUE( CR::ClipboardUIDInUse( u"A" ) );
        EXPECT_TRUE( CR::ClipboardUIDInUse( u"B" ) );
        const CR& itself = second;
        second = itself;
        EXPECT_TRUE( CR::ClipboardUIDInUse( u"A" ) );
        second = first;
        EXPECT_FALSE( CR::ClipboardUIDInUse( u"A" ) );
        second.Set( second.GetClipboardUID(), second.GetClipboardName() );
        EXPECT_TRUE( CR::ClipboardUIDInUse( u"B" ) );
        const CR empty;
        EXPECT_FALSE( CR::ClipboardUIDInUse( u"" ) );
    }
    EXPECT_FALSE( CR::ClipboardUIDInUse( u"B" ) );
}

TEST( ClipboardReference, AnUpdateMovesTheUseAndDoesNotCountItself )
{
    FakeClipboardNames store{ { u"1", u"Notes" } };
    {
        ClipboardReference reference( XText( u"7" ), XText( u"Notes" ) );
        EXPECT_TRUE( reference.UpdateClipboardReference( false ) );
        EXPECT_FALSE( store.mUIDWasInUse );
        EXPECT_FALSE( ClipboardReference::ClipboardUIDInUse( u"7" ) );
        EXPECT_TRUE( ClipboardReference::ClipboardUIDInUse( u"1" ) );
    }
    EXPECT_FALSE( ClipboardReference::ClipboardUIDInUse( u"1" ) );
}

TEST( ClipboardReference, AUIDTakesItsNameAlongWhereTheStoreKnowsIt )
{
    ClipboardReference reference( XText( u"7" ), XText( u"Old" ) );
    reference.SetClipboardUID( XText( u"1" ) );
    EXPECT_EQ( reference.GetClipboardName(), XText( u"Old" ) );
    const FakeClipboardNames store{ { u"1", u"Notes" } };
    reference.SetClipboardUID( XText( u"1" ) );
    EXPECT_EQ( reference.GetClipboardName(), XText( u"Notes" ) );
}

TEST( ClipboardReference, TheNameOrdersAsPeopleDoAndIsFound )
{
    const ClipboardReference two( XText( u"b" ), XText( u"Clip 2" ) ), ten( XText( u"a" ), XText( u"Clip 10" ) );
    const ClipboardReference other( XText( u"c" ), XText( u"Clip 2" ) );
    EXPECT_LT( two.CompareWithSame( ten ), 0 );
    EXPECT_GT( ten.CompareWithSame( two ), 0 );
    EXPECT_LT( two.CompareWithSame( other ), 0 );
    EXPECT_EQ( two.CompareWithSame( two ), 0 );
    StringSearchee searchee;
    two.AddMatchStrings( searchee );
    ASSERT_EQ( searchee.GetElements().size(), 1u );
    EXPECT_EQ( searchee.GetElements()[0].mText, u"Clip 2" );
}
