// What is kept of earlier saves never shows: the bytes are those of the whole domain, written by the writer that keeps
// nothing.
#include "Macros/MMacroFileEncoder.h"
#include "Actions/HActionList.h"
#include "Actions/HBaseAction.h"
#include "CFMethods/PropertyListCodec.h"
#include "Defines/KVPreferences.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "Tests/Macros/RandomMacrosFile.h"
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/XIcon.h"

#include <functional>

namespace
{
constexpr char kStale[] = "piece->Equals( *ioObject.GetPiece() )";

class MacroFileEncoder : public DomainWorld
{
protected:
    MacroFileEncoder() { KVPreferences::UseFolder( mFolder.Path() ); }
    ~MacroFileEncoder() override { KVPreferences::UseFolder( {} ); }

    // Each save draws a UUID: the same one, so that bytes can be compared.
    static std::string Encoded( MMacroDomain& ioDomain )
    {
        XSeededRandom random( 7 );
        const XRandom::Substitute inUse( random );
        const MMacroFileDataPtr data = MMacroFileEncoder::EncodeMacroDomain( ioDomain );
        EXPECT_EQ( data->Span().size(), data->size() );
        return { reinterpret_cast<const char*>( data->Span().data() ), data->size() };
    }
    static std::string Plain( MMacroDomain& ioDomain )
    {
        XSeededRandom random( 7 );
        const XRandom::Substitute inUse( random );
        return std::string( WriteBinaryPropertyList( ioDomain.GetPropertyList() ).View() );
    }
    [[nodiscard]] std::size_t ChangesMissed() const { return mLog.CountAssertions( kStale ); }

    ScratchFolder mFolder;
};

__SafeCFPropertyList Pause( TextView inTime )
{
    return ActionDict( u"Pause", { { "Time", Str( inTime ) } } );
}

__SafeCFPropertyList SomeFile()
{
    const auto macro = [] {
        return MacroWith( u"M",
            { { "Name", Str( u"Tea" ) }, { "CreationDate", nullptr }, { "ModificationDate", nullptr },
                { "Triggers", Array( { HotKeyTrigger( 3 ) } ) },
                { "Actions", Array( { Pause( u"1" ), Pause( u"2" ) } ) } } );
    };
    return FileWith( { SmartGroupWith( u"S", { Str( u"tea" ) } ),
        GroupWith( u"G", { macro(), MacroWith( u"N", { { "Name", Str( u"Other" ) } } ) } ),
        GroupWith( u"H", { MacroWith( u"O" ) } ), GroupWith( u"E", {} ) } );
}

const __SafeCFPropertyList kSomeIcon = Str( TextView( XIcon::kDefaultCustomIcon ) );

MMacro& Macro()
{
    return *MMacroSerializedObject::FindMacroByUID( u"M" );
}

MMacroGroup& Group()
{
    return *MMacroSerializedObject::FindMacroGroupByUID( u"G" );
}

MMacroSmartGroup& SmartGroup()
{
    return *MMacroSerializedObject::FindMacroSmartGroupByUID( u"S" );
}

struct Edit
{
    const char* mName;
    void ( *mEdit )( MMacroDomain& ioDomain );
};

void Inserting( const auto& inBlock )
{
    MMacroInsertion::Start();
    inBlock();
    MMacroInsertion::Finish();
}

// Every operation that changes what is saved of a macro, a group, a smart group or the domain.
constexpr Edit kEdits[] = {
    { "macro: SetName", []( auto& ) { Macro().SetName( u"Coffee" ); } },
    { "macro: SetIsActive", []( auto& ) { Macro().SetIsActive( false ); } },
    { "macro: SetModificationTime", []( auto& ) { Macro().SetModificationTime( 77 ); } },
    { "macro: SetTimesIfNotSet", []( auto& ) { Macro().SetTimesIfNotSet( 88 ); } },
    { "macro: SetCustomIconData", []( auto& ) { Macro().SetCustomIconData( kSomeIcon ); } },
    { "macro: SetCustomIcon", []( auto& ) { Macro().SetCustomIcon( XIcon::FromSavedData( kSomeIcon ) ); } },
    { "macro: SetUID", []( auto& ) { Macro().SetUID( u"M2" ); } },
    { "macro: RecreateUID", []( auto& ) { Macro().RecreateUID(); } },
    { "macro: SetTriggerList", []( auto& ) { Macro().SetTriggerList( {} ); } },
    { "macro: AppendAction",
        []( auto& ) { Macro().AppendAction( HBaseAction::CreateFromPropertyList( Pause( u"3" ) ) ); } },
    { "macro: LoadFromPropertyList",
        []( auto& ) { Inserting( [] { Macro().LoadFromPropertyList( MacroWith( u"M" ) ); } ); } },
    { "macro: EditorChangedActionList",
        []( auto& ) {
            Macro().GetActionList()->RemoveActionAtIndex( 0 );
            Macro().EditorChangedActionList();
        } },
    { "macro: AppleScriptChangedActionList",
        []( auto& ) {
            Macro().GetActionList()->GetAction( 0 )->SetIsActive( false );
            Macro().AppleScriptChangedActionList();
        } },
    { "group: SetName", []( auto& ) { Group().SetName( u"Kitchen" ); } },
    { "group: SetIsActive", []( auto& ) { Group().SetIsActive( false ); } },
    { "group: SetTimesIfNotSet", []( auto& ) { Group().SetTimesIfNotSet( 99 ); } },
    { "group: SetCustomIconData", []( auto& ) { Group().SetCustomIconData( kSomeIcon ); } },
    { "group: SetUID", []( auto& ) { Group().SetUID( u"A" ); } },
    { "group: SetTarget",
        []( auto& ) {
            MMacroAppTarget target;
            target.SetType( MacroAppTargetType::kIncluded );
            Group().SetTarget( target );
        } },
    { "group: SetWindowCondition",
        []( auto& ) {
            Group().SetWindowCondition( { FrontWindowConditionType::kTitleIs, u"Tea" } );
        } },
    { "group: SetActivate", []( auto& ) { Group().SetActivate( MacroGroupActivate::kWithPalette ); } },
    { "group: SetDisabledForThisMac", []( auto& ) { Group().SetDisabledForThisMac( true ); } },
    { "group: SetAvailableApplicationXML",
        []( auto& ) {
            MMacroAppTarget target;
            target.SetType( MacroAppTargetType::kExcluded );
            Group().SetAvailableApplicationXML( *kvr_toXMLString( target.CopyToPropertyList() ) );
        } },
    { "group: SetAvailableWindowXML",
        []( auto& ) {
            Group().SetAvailableWindowXML(
                *kvr_toXMLString( Dict( { { "FocussedWindowConditionType", Str( u"Exists" ) } } ) ) );
        } },
    { "group: SetActivationXML",
        []( auto& ) {
            Group().SetActivationXML( *kvr_toXMLString( Dict( { { "Activate", Str( u"WithPalette" ) } } ) ) );
        } },
    { "group: LoadFromPropertyList",
        []( auto& ) {
            Inserting( [] { Group().LoadFromPropertyList( GroupWith( u"G", { MacroWith( u"P" ) } ), nullptr ); } );
        } },
    { "group: InsertMacro", []( auto& ) { Group().InsertMacro( std::make_unique<MMacro>() ); } },
    { "group: DeleteMacro", []( auto& ) { Group().DeleteMacro( &Macro() ); } },
    { "group: DeleteAllMacros", []( auto& ) { Group().DeleteAllMacros(); } },
    { "group: a macro moves to another",
        []( auto& ) {
            MMacro& macro = Macro();
            Group().RemoveMacro( &macro );
            MMacroSerializedObject::FindMacroGroupByUID( u"E" )->InsertMacro( std::unique_ptr<MMacro>( &macro ) );
        } },
    { "smart group: SetName", []( auto& ) { SmartGroup().SetName( u"Found" ); } },
    { "smart group: SetSearchStrings",
        []( auto& ) {
            SmartGroup().SetSearchStrings( { u"a", u"b" } );
        } },
    { "smart group: SetCustomIconData", []( auto& ) { SmartGroup().SetCustomIconData( kSomeIcon ); } },
    { "smart group: LoadFromPropertyList",
        []( auto& ) {
            Inserting( [] { SmartGroup().LoadFromPropertyList( SmartGroupWith( u"S", { Str( u"x" ) } ) ); } );
        } },
    { "domain: InsertMacroGroup", []( auto& domain ) { domain.InsertMacroGroup( std::make_unique<MMacroGroup>() ); } },
    { "domain: InsertMacroSmartGroup",
        []( auto& domain ) { domain.InsertMacroSmartGroup( std::make_unique<MMacroSmartGroup>() ); } },
    { "domain: DeleteMacroGroup", []( auto& domain ) { domain.DeleteMacroGroup( &Group() ); } },
    { "domain: DeleteMacroSmartGroup", []( auto& domain ) { domain.DeleteMacroSmartGroup( &SmartGroup() ); } },
    { "domain: GetDefaultMacroGroup", []( auto& domain ) { domain.GetDefaultMacroGroup(); } },
    { "domain: SetTimesIfNotSet", []( auto& domain ) { domain.SetTimesIfNotSet(); } },
    { "domain: versions", []( auto& domain ) { domain.SetMacroPreferencesVersion( 92 ); } },
    { "domain: MergePropertyListFromArray",
        []( auto& domain ) {
            domain.MergePropertyListFromArray(
                Array( { With( GroupWith( u"K", { MacroWith( u"M", { { "Name", Str( u"Came" ) } } ) } ), "Name",
                    Str( u"Group G" ) ) } ) );
        } },
    { "domain: LoadFromPropertyList",
        []( auto& domain ) { domain.LoadFromPropertyList( FileWith( { GroupWith( u"G", {} ) } ) ); } },
    { "domain: Empty", []( auto& domain ) { domain.Empty(); } },
};
} // namespace

TEST_F( MacroFileEncoder, TheBytesAreThoseOfTheWholePropertyList )
{
    for ( std::uint64_t seed = 1; seed <= 200; ++seed )
    {
        mDomain.LoadFromPropertyList( RandomMacrosFile( seed ).Next() );
        if ( seed % 3 == 0 )
            MMacroFileEncoder::EncodeSome( mDomain, seed % 7 );
        const std::string first = Encoded( mDomain );
        ASSERT_TRUE( first == Plain( mDomain ) ) << "seed " << seed;
        ASSERT_TRUE( first == Encoded( mDomain ) ) << "seed " << seed;
    }
    EXPECT_EQ( ChangesMissed(), 0u );
}

TEST_F( MacroFileEncoder, EveryOperationThatChangesAnObjectIsSavedAndNothingElseIsEncodedAnew )
{
    for ( const auto& [name, edit] : kEdits )
    {
        mDomain.LoadFromPropertyList( SomeFile() );
        const std::string before = Encoded( mDomain );
        const XPlistPiecePtr untouched = MMacroSerializedObject::FindMacroByUID( u"O" )->GetPiece();
        edit( mDomain );
        const MMacro* const other = MMacroSerializedObject::FindMacroByUID( u"O" );
        EXPECT_TRUE( not other or other->GetPiece() == untouched ) << name;
        const std::string after = Encoded( mDomain );
        EXPECT_TRUE( after == Plain( mDomain ) ) << name;
        EXPECT_FALSE( after == before ) << name << " changes nothing, so it shows nothing";
        EXPECT_EQ( ChangesMissed(), 0u ) << name;
        (void)mLog.Take();
    }
}

TEST_F( MacroFileEncoder, RandomEditsInARowAreAllSaved )
{
    for ( std::uint64_t seed = 1; seed <= 40; ++seed )
    {
        std::mt19937_64 random( seed );
        mDomain.LoadFromPropertyList( SomeFile() );
        for ( int step = 0; step < 12; ++step )
        {
            const Edit& edit = kEdits[random() % std::size( kEdits )];
            // An edit may have taken away what this one changes.
            if ( MMacroSerializedObject::FindMacroByUID( u"M" ) and
                MMacroSerializedObject::FindMacroGroupByUID( u"G" ) and
                MMacroSerializedObject::FindMacroGroupByUID( u"E" ) and Macro().GetActionList()->GetCount() > 1 and
                Macro().GetOwningGroup() == &Group() and MMacroSerializedObject::FindMacroSmartGroupByUID( u"S" ) )
                edit.mEdit( mDomain );
            if ( random() % 2 )
            {
                ASSERT_TRUE( Encoded( mDomain ) == Plain( mDomain ) ) << "seed " << seed << ", " << edit.mName;
            }
        }
    }
    EXPECT_EQ( ChangesMissed(), 0u );
}

TEST_F( MacroFileEncoder, AChangeInPlaceIsSavedBecauseTheFunnelNamesItsObject )
{
    using enum MacrosWindowChangeType;
    const struct
    {
        MacrosWindowChangeType mType;
        MMacroSerializedObject* ( *mObject )();
    } cases[] = {
        { kMacroChanged, []() -> MMacroSerializedObject* { return &Macro(); } },
        { kMacroMoved, []() -> MMacroSerializedObject* { return &Macro(); } },
        { kMacroGroupChanged, []() -> MMacroSerializedObject* { return &Group(); } },
        { kThemeChanged, []() -> MMacroSerializedObject* { return &Group(); } },
    };
    for ( const auto& [type, object] : cases )
    {
        mDomain.LoadFromPropertyList( SomeFile() );
        (void)Encoded( mDomain );
        Macro().GetActionList()->GetAction( 1 )->SetIsActive( false );
        MacrosWindowChange change;
        change.mType = type;
        change.mObjects = { object() };
        MacrosWindowInterface::NoteChange( std::nullopt, change );
        EXPECT_TRUE( Encoded( mDomain ) == Plain( mDomain ) ) << int( type );
        EXPECT_EQ( ChangesMissed(), 0u ) << int( type );
    }
}

TEST_F( MacroFileEncoder, AChangeThatNobodyToldIsFoundByCheckingAndSavedByAnEncodingAnew )
{
    mDomain.LoadFromPropertyList( SomeFile() );
    while ( not MMacroFileEncoder::EncodeSome( mDomain, 1 ) )
    {}
    EXPECT_TRUE( MMacroFileEncoder::CheckSome( mDomain, 100 ) );
    Macro().GetActionList()->GetAction( 0 )->SetIsActive( false );
    int missed = 0;
    for ( int turn = 0; turn < 20; ++turn )
        missed += not MMacroFileEncoder::CheckSome( mDomain, 1 );
    EXPECT_EQ( missed, 1 );
    EXPECT_EQ( ChangesMissed(), 1u );
    EXPECT_TRUE( Encoded( mDomain ) == Plain( mDomain ) );

    Macro().GetActionList()->GetAction( 1 )->SetIsActive( false );
    XSeededRandom random( 7 );
    const XRandom::Substitute inUse( random );
    const MMacroFileDataPtr data = MMacroFileEncoder::EncodeMacroDomainAnew( mDomain );
    EXPECT_TRUE(
        std::string_view( reinterpret_cast<const char*>( data->Span().data() ), data->size() ) == Plain( mDomain ) );
    EXPECT_EQ( ChangesMissed(), 1u );
}

TEST_F( MacroFileEncoder, TheBytesOfASaveDontFollowTheModelAfterwards )
{
    mDomain.LoadFromPropertyList( SomeFile() );
    const std::string before = Plain( mDomain );
    MMacroFileDataPtr data;
    {
        XSeededRandom random( 7 );
        const XRandom::Substitute inUse( random );
        data = MMacroFileEncoder::EncodeMacroDomain( mDomain );
    }
    Macro().SetName( u"Later" );
    (void)Encoded( mDomain );
    mDomain.Empty();
    EXPECT_TRUE( std::string_view( reinterpret_cast<const char*>( data->Span().data() ), data->size() ) == before );
}

TEST_F( MacroFileEncoder, EncodingInIdleTurnsComesToAnEnd )
{
    mDomain.LoadFromPropertyList( SomeFile() );
    int turns = 1;
    while ( not MMacroFileEncoder::EncodeSome( mDomain, 2 ) and turns < 100 )
        ++turns;
    EXPECT_EQ( turns, 4 ); // a smart group, three groups and three macros
    EXPECT_TRUE( MMacroFileEncoder::EncodeSome( mDomain, 0 ) );
    Macro().SetName( u"Changed" );
    EXPECT_FALSE( MMacroFileEncoder::EncodeSome( mDomain, 0 ) );
}
