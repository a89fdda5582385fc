#include "MacrosWindow/MacroEditing.h"

#include "MacrosWindow/MacrosWindowInterface.h"
#include "Tests/App/EditorRun.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace
{
using MacroEditing::Objects;

/// Remembers the types of the changes that it is told.
class WatchingWindow final : public MacrosWindow
{
public:
    WatchingWindow() { MacrosWindowInterface::AddWindow( *this ); }
    ~WatchingWindow() override { MacrosWindowInterface::RemoveWindow( *this ); }
    const XText& windowUID() const override { return mUID; }
    void noteChange( const MacrosWindowChange& inChange ) override { mTypes.push_back( int( inChange.mType ) ); }
    CFContainer<XPlistDictionary> savedSelectionState() const override { return {}; }
    void didReloadMacros( const CFContainer<XPlistDictionary>& ) override {}
    void didDeferredSaveAllMacros() override {}
    void showNeedSaveView( bool ) override {}
    void stopRecording() override {}
    void close() override {}

    std::vector<int> mTypes;

private:
    XText mUID = u"W";
};

struct MacroEditingWorld : testing::Test
{
    static MMacroSerializedObject* At( TextView inUID ) { return MMacroSerializedObject::FindObjectByUID( inUID ); }

    EditorRun mEditor{ MacrosOfEditorTests() };
    WatchingWindow mWindow;
};
} // namespace

TEST_F( MacroEditingWorld, WindowsAreToldOncePerKind )
{
    MacroEditing::SetActive( { At( u"a1" ), At( u"a2" ), At( u"B" ), At( u"S" ) }, false );
    EXPECT_THAT( mWindow.mTypes, ElementsAre( 6, 2, 10 ) );
    mWindow.mTypes.clear();
    MacroEditing::Delete( { At( u"B" ), At( u"b1" ), At( u"S" ), At( u"a1" ) } );
    EXPECT_THAT( mWindow.mTypes, ElementsAre( 7, 0, 3 ) );
    EXPECT_EQ( At( u"b1" ), nullptr );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 1u );
}

TEST_F( MacroEditingWorld, CopiesReferToEachOther )
{
    const Objects copies = MacroEditing::Duplicate( { At( u"a1" ), At( u"a2" ) } );
    ASSERT_EQ( copies.size(), 2u );
    EXPECT_THAT( ReferencesOf( copies[0]->CopyToPropertyList() ), ElementsAre( copies[1]->GetUID().GetText() ) );
    EXPECT_THAT( ReferencesOf( At( u"a1" )->CopyToPropertyList() ), ElementsAre( u"a2" ) );
    // A macro of a group that is copied is copied once.
    EXPECT_EQ( MacroEditing::Duplicate( { At( u"A" ), At( u"a1" ) } ).size(), 1u );
}

TEST_F( MacroEditingWorld, RestoringTakesThePlaceOfWhatHasTheUID )
{
    const auto group = At( u"A" )->CopyToPropertyList(), macro = At( u"a1" )->CopyToPropertyList();
    const __SafeCFPropertyList before = mEditor.Model();
    (void)MacroEditing::Rename( { { At( u"a1" ), XText( u"Other" ) }, { At( u"A" ), XText( u"Omega" ) } } );
    MacroEditing::AddMacro( u"Newer", *At( u"A" )->GetAsMacroGroup() );
    ASSERT_TRUE( MacroEditing::Restore( { group, {} } ) );
    EXPECT_TRUE( mEditor.Model().Equals( before ) );
    // A macro comes back with its group, without the group's other macros.
    MacroEditing::Delete( { At( u"A" ) } );
    ASSERT_TRUE( MacroEditing::Restore( { macro, group } ) );
    ASSERT_TRUE( At( u"A" ) );
    EXPECT_EQ( At( u"A" )->GetName(), u"Alpha" );
    EXPECT_EQ( At( u"A" )->GetAsMacroGroup()->GetMacroCount(), 1u );
    EXPECT_TRUE( At( u"a1" )->CopyToPropertyList().Equals( macro ) );
    // It stays in the group that it is in now.
    (void)MacroEditing::Move( { At( u"a1" )->GetAsMacro() }, *At( u"B" )->GetAsMacroGroup() );
    ASSERT_TRUE( MacroEditing::Restore( { macro, group } ) );
    EXPECT_EQ( At( u"a1" )->GetAsMacro()->GetOwningGroup(), At( u"B" ) );
}

TEST_F( MacroEditingWorld, WhatCantBeUnderstoodIsNotRestoredAndTakesNothingAway )
{
    const __SafeCFPropertyList before = mEditor.Model();
    EXPECT_EQ( MacroEditing::Restore( { Dict( { { "UID", Str( u"S" ) } } ), {} } ), nullptr );
    EXPECT_EQ( MacroEditing::Restore( { Dict( { { "UID", Str( u"a1" ) } } ), Dict( {} ) } ), nullptr );
    EXPECT_EQ( MacroEditing::Restore( { Str( u"x" ), {} } ), nullptr );
    EXPECT_FALSE( MMacroInsertion::CurrentlyInserting() );
    EXPECT_TRUE( mEditor.Model().Equals( before ) );
    for ( const std::string bytes : { "", "rubbish", "bplist00" } )
        EXPECT_TRUE( MacroEditing::ReplaceAllMacros( std::make_shared<MMacroFileData>( XBytes( bytes ) ), u"T" ) );
    EXPECT_TRUE( MacroEditing::ReplaceAllMacros(
        std::make_shared<MMacroFileData>( WriteBinaryPropertyList( Array( {} ) ) ), u"T" ) );
    EXPECT_TRUE( mEditor.Model().Equals( before ) );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 0u );
}
