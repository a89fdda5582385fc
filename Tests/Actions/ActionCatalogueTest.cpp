// All types of action against a data file of their keys, defaults and traits.
#include "ActionTestSupport.h"

#include "Actions/AStoredAction.h"
#include "Actions/ActionFieldParts.h"
#include "Actions/FlowControlActions.h"
#include "Actions/HCaseEntry.h"
#include "Actions/TextActions.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XIcon.h"

#include <fstream>
#include <sstream>

namespace
{
struct CatalogueKey
{
    std::string mKey, mKind, mValue;
};

struct CatalogueType
{
    std::string mKey, mTimeOut, mFailure;
    std::vector<CatalogueKey> mKeys;
    bool mStored = false;
    std::string mUpgradesTo;

    bool IsPlain() const { return not mStored and mUpgradesTo.empty(); }
    __SafeCFPropertyList Bare() const { return ActionDict( TextFromASCII( mKey ) ); }
    std::unique_ptr<HBaseAction> New() const
    {
        return HBaseAction::CreateActionOfType( *HActionTypeFromKey( *XPlistString::MakeASCII( mKey ) ) );
    }
};

std::vector<CatalogueType> ReadCatalogue()
{
    std::vector<CatalogueType> types;
    std::ifstream file( KORVALEN_TESTS_FOLDER "/Actions/ActionCatalogue.txt" );
    for ( std::string line; std::getline( file, line ); )
    {
        if ( line.empty() or line[0] == '#' )
            continue;
        std::istringstream words( line );
        if ( line[0] != ' ' )
        {
            CatalogueType type;
            words >> type.mKey >> type.mTimeOut >> type.mFailure;
            types.push_back( type );
            continue;
        }
        CatalogueKey key;
        words >> key.mKey >> key.mKind >> std::ws;
        std::getline( words, key.mValue );
        if ( key.mKey == "stored" )
            types.back().mStored = true;
        else if ( key.mKey == "upgrades" )
            types.back().mUpgradesTo = key.mKind;
        else
            types.back().mKeys.push_back( key );
    }
    return types;
}

const std::vector<CatalogueType>& Catalogue()
{
    static const auto gTypes = ReadCatalogue();
    return gTypes;
}

// The value of a row of the data file, of a new action or of one that was read without the key.
__SafeCFPropertyList Expected( const CatalogueKey& inKey, bool inNew )
{
    const Text value = TextFromUTF8( inKey.mValue );
    if ( inKey.mKind == "text" )
        return Str( value );
    if ( inKey.mKind == "new" )
        return Str( inNew ? TextView( value ) : TextView() );
    if ( inKey.mKind == "boolean" )
        return Bool( inKey.mValue == "true" );
    if ( inKey.mKind == "array" )
        return Array( {} );
    if ( inKey.mKind == "entries" )
        return Array( { Dict(
            { { "TestValue", Str( u"" ) }, { "ConditionType", Str( u"Contains" ) }, { "Actions", Array( {} ) } } ) } );
    if ( inKey.mKey == "Conditions" )
        return Dict( { { "ConditionListMatch", Str( u"All" ) }, { "ConditionList", Array( {} ) } } );
    if ( inKey.mKey == "Collections" )
        return Dict( { { "CollectionList", Array( {} ) } } );
    return Str( u"" );
}

__SafeCFPropertyList ExpectedSave( const CatalogueType& inType, bool inNew )
{
    __SafeCFPropertyList expected = inType.Bare();
    if ( inType.mTimeOut != "-" )
        expected = With( expected, "TimeOutAbortsMacro", Bool( true ) );
    for ( const CatalogueKey& key : inType.mKeys )
        expected = With( expected, key.mKey, Expected( key, inNew ) );
    return expected;
}

// Every stored name of every table, for finding a second value that a key takes.
std::vector<Text> ManyNames()
{
    std::vector<Text> names = { u"Changed" };
    const auto add = [&]( std::span<const TextView> inNames ) {
        names.insert( names.end(), inNames.begin(), inNames.end() );
    };
    add( NamesOf( CancelAction() ) );
    add( NamesOf( PauseUnit() ) );
    add( NamesOf( SemaphoreAction() ) );
    add( NamesOf( InsertTextAction() ) );
    add( NamesOf( TextPlacement() ) );
    add( NamesOf( ActionTextSourceType() ) );
    add( NamesOf( ApplicationTargetingType() ) );
    return names;
}

std::vector<__SafeCFPropertyList> OtherValues( const __SafeCFPropertyList& inValue )
{
    std::vector<__SafeCFPropertyList> values;
    if ( inValue.AsBoolean() )
        values.push_back( Bool( not inValue.AsBoolean()->GetValue() ) );
    else if ( inValue.AsDictionary() and inValue.AsDictionary()->Contains( CFSTR( "ConditionListMatch" ) ) )
        values.push_back( With( inValue, "ConditionListMatch", Str( u"Any" ) ) );
    else if ( inValue.AsDictionary() )
        values.push_back( Dict( { { "Anything", Array( { Str( u"x" ) } ) } } ) );
    else if ( inValue.AsArray() and inValue.AsArray()->GetCount() == 0 )
        values.push_back( Array( { ActionDict( u"BringWindowsForward", { { "IsActive", Bool( false ) } } ) } ) );
    else if ( inValue.AsArray() )
        values.push_back( Array( { Dict( { { "TestValue", Str( u"7" ) }, { "ConditionType", Str( u"Matches" ) },
            { "Actions", Array( { ActionDict( u"ShowAll" ) } ) }, { "ActionListDisclosed", Bool( false ) } } ) } ) );
    else
    {
        for ( const Text& name : ManyNames() )
            values.push_back( Str( name ) );
    }
    return values;
}
} // namespace

TEST( ActionCatalogue, HasALineForEveryTypeInTheOrderOfTheTypes )
{
    ASSERT_EQ( Catalogue().size(), kHActionTypeCount );
    for ( std::size_t i = 0; i < kHActionTypeCount; ++i )
        EXPECT_EQ( KeyOf( HActionType( i ) ).GetUTF8(), Catalogue()[i].mKey );
}

TEST( ActionCatalogue, KeysAreFoundExactlyAndNothingElse )
{
    for ( const CatalogueType& type : Catalogue() )
    {
        std::string swapped = type.mKey;
        swapped[0] = char( swapped[0] ^ 0x20 );
        EXPECT_TRUE( HActionTypeFromKey( *XPlistString::MakeASCII( type.mKey ) ) ) << type.mKey;
        EXPECT_FALSE( HActionTypeFromKey( *XPlistString::MakeASCII( swapped ) ) ) << swapped;
        EXPECT_FALSE( HActionTypeFromKey( *XPlistString::MakeASCII( type.mKey + " " ) ) ) << type.mKey;
    }
    EXPECT_FALSE( HActionTypeFromKey( *XPlistString::Make( u"Pausé" ) ) );
    EXPECT_FALSE( HActionTypeFromKey( *XPlistString::Make( u"" ) ) );
}

TEST( ActionCatalogue, TimeOutsAndFailuresAreThoseOfTheTable )
{
    for ( const CatalogueType& type : Catalogue() )
    {
        const auto action = type.New();
        ASSERT_TRUE( action ) << type.mKey;
        EXPECT_EQ( KeyOf( action->GetActionType() ).GetUTF8(), type.mKey );
        EXPECT_EQ( action->HasTimeOut(), type.mTimeOut != "-" ) << type.mKey;
        if ( type.mTimeOut != "-" )
        {
            EXPECT_EQ( action->DefaultTimeOutPeriod(), std::stod( type.mTimeOut ) ) << type.mKey;
        }
        EXPECT_EQ( action->ActionCanFail(), type.mFailure != "-" ) << type.mKey;
        if ( action->ActionCanFail() )
        {
            EXPECT_EQ( action->DefaultStopOnFailure(), type.mFailure == "stop" ) << type.mKey;
        }
    }
}

TEST( ActionCatalogue, EveryTypeHasATitleAndADescriptionOfItsOwn )
{
    for ( const CatalogueType& type : Catalogue() )
    {
        const auto action = type.New();
        const Text key = kHotKeyActionName( action->GetActionType() );
        EXPECT_TRUE( kvr_hasLocalized( key ) ) << UTF8FromText( key );
        for ( const Text& words :
            { action->GetActionTitle(), action->GetActionDescriptionString(), action->WikiName() } )
        {
            EXPECT_FALSE( words.empty() ) << type.mKey;
            EXPECT_EQ( words.find( u'%' ), Text::npos ) << UTF8FromText( words );
        }
        EXPECT_TRUE( action->GetActionXIcon().Defined() ) << type.mKey;
    }
}

TEST( ActionCatalogue, ANewActionSavesTheKeysAndDefaultsOfItsType )
{
    for ( const CatalogueType& type : Catalogue() )
    {
        if ( not type.IsPlain() )
            continue;
        const auto expected = ExpectedSave( type, true );
        EXPECT_EQ( Saved( *type.New() ), expected ) << Shown( Saved( *type.New() ) ) << Shown( expected );
    }
}

TEST( ActionCatalogue, ReadingADictionaryOfNothingGivesTheDefaultsOrQuotesWhatIsRequired )
{
    for ( const CatalogueType& type : Catalogue() )
    {
        if ( not type.IsPlain() )
            continue;
        const CatalogueKey* required = nullptr;
        for ( const CatalogueKey& key : type.mKeys )
            required = key.mKind == "required" ? &key : required;
        if ( required )
        {
            EXPECT_EQ( ReadFailure( type.Bare() ),
                "dictionary->Get( CFSTR(\"" + required->mKey + "\"), " + required->mValue + " )" );
        }
        else
        {
            EXPECT_EQ( Reloaded( type.Bare() ), ExpectedSave( type, false ) ) << Shown( Reloaded( type.Bare() ) );
        }
    }
}

TEST( ActionCatalogue, EachValueThatIsChangedComesBackThroughLoadingCloningAndSaving )
{
    for ( const CatalogueType& type : Catalogue() )
    {
        if ( not type.IsPlain() )
            continue;
        const auto original = HBaseAction::CreateFromPropertyList( ExpectedSave( type, true ) );
        for ( const CatalogueKey& key : type.mKeys )
        {
            bool found = false;
            for ( const auto& value : OtherValues( Expected( key, true ) ) )
            {
                if ( found or value == Expected( key, true ) )
                    continue;
                const auto changed = HBaseAction::CreateFromPropertyList( With( Saved( *original ), key.mKey, value ) );
                const auto clone = changed->Clone();
                found = At( Saved( *clone ), key.mKey ) == value;
                if ( not found )
                    continue;
                EXPECT_EQ( Saved( *clone ), Saved( *changed ) ) << type.mKey << " " << key.mKey;
                EXPECT_EQ( changed->CompareFields( *clone ), 0 ) << type.mKey << " " << key.mKey;
                EXPECT_EQ( changed->CompareFields( *original ), -original->CompareFields( *changed ) );
                EXPECT_NE( changed->CompareFields( *original ), 0 ) << type.mKey << " " << key.mKey;
            }
            EXPECT_TRUE( found ) << type.mKey << ": no changed value of " << key.mKey << " comes back";
        }
    }
}

TEST( ActionCatalogue, ValuesOfAWrongTypeLeaveTheDefaults )
{
    for ( const CatalogueType& type : Catalogue() )
    {
        for ( const CatalogueKey& key : type.mKeys )
        {
            if ( key.mKind != "text" and key.mKind != "boolean" )
                continue;
            const auto damaged = With( ExpectedSave( type, true ), key.mKey, __SafeCFPropertyList::Real( 3 ) );
            EXPECT_EQ( At( Reloaded( damaged ), key.mKey ), Expected( key, true ) ) << type.mKey << " " << key.mKey;
        }
    }
}

TEST( ActionCatalogue, TypesWithoutAClassKeepTheirKeysAsTheyStand )
{
    for ( const CatalogueType& type : Catalogue() )
    {
        if ( not type.mStored or not dynamic_cast<AStoredAction*>( type.New().get() ) )
            continue;
        const auto read = With( With( type.Bare(), "Odd", Dict( { { "Nested", Array( { Bool( true ) } ) } } ) ),
            "ActionNotes", Str( u"n" ) );
        const auto action = HBaseAction::CreateFromPropertyList( read );
        auto expected = read;
        if ( type.mTimeOut != "-" )
            expected = With( expected, "TimeOutAbortsMacro", Bool( true ) );
        EXPECT_EQ( Saved( *action->Clone() ), expected ) << type.mKey;
        EXPECT_EQ( action->CompareFields( *action->Clone() ), 0 );
        EXPECT_NE( action->CompareFields( *type.New() ), 0 );
    }
}
