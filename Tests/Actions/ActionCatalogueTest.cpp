// All types of action against their catalogue; what every family keeps stands in CatalogueChecks.cpp.
#include "ActionTestSupport.h"
#include "Tests/Support/CatalogueChecks.h"

#include "Utility/Text/Localization.h"
#include "XCAF/XIcon.h"

namespace
{
class ActionObject final : public CatalogueObject
{
public:
    explicit ActionObject( std::unique_ptr<HBaseAction> inAction ) : mAction( std::move( inAction ) ) {}

    __SafeCFPropertyList Save() const override { return Saved( *mAction ); }
    std::unique_ptr<CatalogueObject> Clone() const override
    {
        return std::make_unique<ActionObject>( mAction->Clone() );
    }
    int Compare( const CatalogueObject& inOther ) const override
    {
        return mAction->CompareFields( *static_cast<const ActionObject&>( inOther ).mAction );
    }
    Text TypeTitle() const override { return mAction->GetActionTitle(); }
    Text Description() const override { return mAction->GetActionDescriptionString(); }
    void AddMatchStrings( StringSearchee& ioSearchee ) const override { mAction->AddMatchStrings( ioSearchee ); }
    const HBaseAction& Action() const { return *mAction; }

private:
    std::unique_ptr<HBaseAction> mAction;
};

std::vector<std::string> ActionTypeKeys()
{
    std::vector<std::string> keys;
    for ( std::size_t i = 0; i < kHActionTypeCount; ++i )
        keys.push_back( KeyOf( HActionType( i ) ).GetUTF8() );
    return keys;
}

class ActionFamily final : public CatalogueFamily
{
public:
    ActionFamily() : CatalogueFamily( "MacroActionType", "Actions/ActionCatalogue.txt", ActionTypeKeys ) {}

    std::unique_ptr<CatalogueObject> New( std::size_t inType ) const override
    {
        auto action = HBaseAction::CreateActionOfType( HActionType( inType ) );
        return action ? std::make_unique<ActionObject>( std::move( action ) ) : nullptr;
    }
    std::unique_ptr<CatalogueObject> Read( const __SafeCFPropertyList& inValue ) const override
    {
        return std::make_unique<ActionObject>( HBaseAction::CreateFromPropertyList( inValue ) );
    }
    __SafeCFPropertyList WithBase( const CatalogueType& inType, const __SafeCFPropertyList& inSaved ) const override
    {
        return TimeOutOf( inType, inSaved ) == "-" ? inSaved : With( inSaved, "TimeOutAbortsMacro", Bool( true ) );
    }
    // The type's, or that of the value that one of its keys has.
    static std::string TimeOutOf( const CatalogueType& inType, const __SafeCFPropertyList& inSaved )
    {
        for ( const std::vector<std::string>& traits : inType.mTraits )
        {
            if ( At( inSaved, traits[0] ) == Str( TextFromUTF8( traits[1] ) ) )
                return traits[2];
        }
        return inType.mWords[0];
    }
};
const ActionFamily gActions;

void ExpectTraits(
    const HBaseAction& inAction, const std::string& inTimeOut, const std::string& inFailure, const std::string& inWhat )
{
    EXPECT_EQ( inAction.HasTimeOut(), inTimeOut != "-" ) << inWhat;
    if ( inTimeOut != "-" )
    {
        EXPECT_EQ( inAction.DefaultTimeOutPeriod(), std::stod( inTimeOut ) ) << inWhat;
    }
    EXPECT_EQ( inAction.ActionCanFail(), inFailure != "-" ) << inWhat;
    if ( inFailure != "-" )
    {
        EXPECT_EQ( inAction.DefaultStopOnFailure(), inFailure == "stop" ) << inWhat;
    }
}
} // namespace

INSTANTIATE_TEST_SUITE_P( Actions, TypeCatalogueTest, testing::Values( &gActions ) );

TEST( ActionCatalogue, KeysAreFoundExactlyAndNothingElse )
{
    for ( const CatalogueType& type : gActions.Catalogue().Types() )
    {
        std::string swapped = type.mKey;
        swapped[0] = char( swapped[0] ^ 0x20 );
        EXPECT_TRUE( HActionTypeFromKey( *XPlistString::MakeASCII( type.mKey ) ) ) << type.mKey;
        EXPECT_FALSE( HActionTypeFromKey( *XPlistString::MakeASCII( swapped ) ) ) << swapped;
        EXPECT_FALSE( HActionTypeFromKey( *XPlistString::MakeASCII( type.mKey + " " ) ) ) << type.mKey;
    }
    EXPECT_FALSE( HActionTypeFromKey( *XPlistString::Make( u"Paus\u00E9" ) ) );
    EXPECT_FALSE( HActionTypeFromKey( *XPlistString::Make( u"" ) ) );
}

TEST( ActionCatalogue, TimeOutsFailuresAndContainersAreThoseOfTheCatalogue )
{
    for ( std::size_t i = 0; i < kHActionTypeCount; ++i )
    {
        const CatalogueType& type = gActions.Catalogue().Types()[i];
        const auto action = HBaseAction::CreateActionOfType( HActionType( i ) );
        ExpectTraits( *action, type.mWords[0], type.mWords[1], type.mKey );
        EXPECT_EQ( action->HasSubActions(), type.mWords.size() > 2 ) << type.mKey;
        EXPECT_EQ( KeyOf( action->GetActionType() ).GetUTF8(), type.mKey );
        EXPECT_TRUE( action->GetActionXIcon().Defined() ) << type.mKey;
        EXPECT_TRUE( kvr_hasLocalized( kHotKeyActionName( action->GetActionType() ) ) ) << type.mKey;
        for ( const std::vector<std::string>& traits : type.mTraits )
        {
            const auto changed = HBaseAction::CreateFromPropertyList(
                With( ActionDict( TextFromUTF8( type.mKey ) ), traits[0], Str( TextFromUTF8( traits[1] ) ) ) );
            ExpectTraits( *changed, traits[2], traits[3], type.mKey + " " + traits[1] );
        }
    }
}

TEST( ActionCatalogue, BaseKeysComeBackWhereTheTypeHasTheTrait )
{
    for ( const CatalogueType& type : gActions.Catalogue().Types() )
    {
        if ( not type.mUpgradesTo.empty() )
            continue;
        auto read = WithRequiredKeys( type.mRows, ActionDict( TextFromUTF8( type.mKey ) ) );
        for ( const auto& [key, value] : { PlistEntry( "IsActive", Bool( false ) ), { "IsDisclosed", Bool( false ) },
                  { "TimeOutPeriod", __SafeCFPropertyList::Real( 30 ) }, { "TimeOutAbortsMacro", Bool( false ) },
                  { "NotifyOnTimeOut", Bool( true ) }, { "StopOnFailure", Bool( type.mWords[1] != "stop" ) },
                  { "NotifyOnFailure", Bool( false ) }, { "ActionColor", Str( u"Teal" ) },
                  { "ActionName", Str( u"Mine" ) }, { "ActionNotes", Str( u"Why" ) } } )
        {
            read = With( read, key, value );
            const std::string_view name = key;
            const bool timeOut = name.find( "TimeOut" ) != name.npos, failure = name.find( "Failure" ) != name.npos;
            const bool kept = timeOut ? type.mWords[0] != "-" : not failure or type.mWords[1] != "-";
            EXPECT_TRUE( At( Reloaded( read ), key ) == ( kept ? value : __SafeCFPropertyList() ) )
                << type.mKey << " " << key;
        }
    }
}
