#include "Actions/ClipboardTarget.h"

#include "Actions/HFieldVisitors.h"
#include "FakeClipboardNames.h"
#include "Tests/Actions/ActionTestSupport.h"
#include "Utility/Search/StringSearchee.h"

namespace
{
ClipboardTarget Read( const __SafeCFPropertyList& inDictionary )
{
    ClipboardTarget target;
    HReadingVisitor visitor( *inDictionary.AsDictionary() );
    target.DescribeFields( visitor, "T" );
    return target;
}

__SafeCFPropertyList SavedTarget( ClipboardTarget inTarget )
{
    XMutableDictionary dictionary;
    HSavingVisitor visitor( dictionary );
    inTarget.DescribeFields( visitor, "T" );
    return dictionary.Seal();
}

const __SafeCFPropertyList& NamedForm()
{
    static const auto gForm = Dict( { { "TUseNamedClipboard", Bool( true ) }, { "TNamedClipboardUID", Str( u"1" ) },
        { "TNamedClipboardRedundantDisplayName", Str( u"Notes" ) } } );
    return gForm;
}
} // namespace

TEST( ClipboardTarget, WritesWhatItsKindNeeds )
{
    const auto trigger = Dict( { { "TUseTriggerClipboard", Bool( true ) } } );
    const struct
    {
        __SafeCFPropertyList mRead, mWritten;
    } kCases[] = {
        { Dict( {} ), Dict( {} ) },
        { With( NamedForm(), "TUseNamedClipboard", nullptr ), Dict( {} ) },
        { With( NamedForm(), "TUseNamedClipboard", Bool( false ) ), Dict( {} ) },
        { With( NamedForm(), "TUseNamedClipboard", Str( u"yes" ) ), Dict( {} ) },
        { trigger, trigger },
        { With( trigger, "TNamedClipboardUID", Str( u"1" ) ), trigger },
        { NamedForm(), NamedForm() },
        { With( NamedForm(), "TUseTriggerClipboard", Bool( true ) ), NamedForm() },
        { Dict( { { "TUseNamedClipboard", Bool( true ) } } ),
            With( With( NamedForm(), "TNamedClipboardUID", Str( u"" ) ), "TNamedClipboardRedundantDisplayName",
                Str( u"" ) ) },
    };
    for ( const auto& [read, written] : kCases )
        EXPECT_EQ( SavedTarget( Read( read ) ), written ) << Shown( read );
}

TEST( ClipboardTarget, IsTheSameByWhichClipboardItIs )
{
    const ClipboardTarget system, named = Read( NamedForm() );
    ClipboardTarget trigger;
    trigger.SetKind( ClipboardTarget::Kind::kTrigger );
    const ClipboardTarget renamed( ClipboardReference( XText( u"1" ), XText( u"Other" ) ) );
    EXPECT_TRUE( named == renamed );
    EXPECT_FALSE( named == system );
    EXPECT_FALSE( trigger == system );
    EXPECT_EQ( system.GetGenericIdentifier(), XText( u"SystemClipboard" ) );
    EXPECT_EQ( trigger.GetGenericIdentifier(), XText( u"TriggerClipboard" ) );
    EXPECT_EQ( named.GetGenericIdentifier(), XText( u"1" ) );
}

TEST( ClipboardTarget, IsSavedWithTheNameOfTodayAndKeepsTheOneThatItHas )
{
    const ClipboardTarget target = Read( NamedForm() );
    const FakeClipboardNames store{ { u"1", u"Renamed" } };
    EXPECT_EQ( At( SavedTarget( target ), "TNamedClipboardRedundantDisplayName" ), Str( u"Renamed" ) );
    EXPECT_EQ( target.GetReference().GetClipboardName(), XText( u"Notes" ) );
    ClipboardTarget updated = target;
    updated.UpdateToDefaultValues( false );
    EXPECT_EQ( updated.GetReference().GetClipboardName(), XText( u"Renamed" ) );
}

TEST( ClipboardTarget, OnlyANamedOneHasWordsOfItsOwn )
{
    for ( const auto& [form, words] : { std::pair( NamedForm(), 1u ), std::pair( Dict( {} ), 0u ) } )
    {
        StringSearchee searchee;
        Read( form ).AddMatchStrings( searchee );
        EXPECT_EQ( searchee.GetElements().size(), words );
    }
    EXPECT_EQ( Read( NamedForm() ).GetDisplayName(), u"Named Clipboard “Notes”" );
}
