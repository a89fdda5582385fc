// Applications and switchers: what the catalogue of keys can't show.
#include "ActionTestSupport.h"

#include "Utility/Search/StringSearchee.h"

#include <set>

namespace
{
__SafeCFPropertyList App( TextView inName )
{
    return Dict( { { "Name", Str( inName ) } } );
}

std::string WordsOf( const __SafeCFPropertyList& inAction )
{
    StringSearchee searchee;
    HBaseAction::CreateFromPropertyList( inAction )->AddMatchStrings( searchee );
    std::string words;
    for ( const StringSearchee::Element& element : searchee.GetElements() )
        words += UTF8FromText( element.mText ) + "\n";
    return words;
}
} // namespace

TEST( ApplicationActions, DescriptionsTellTheApplicationAndWhatHappensToIt )
{
    const auto notes = App( u"Notes" );
    const auto byIdentifier = Dict( { { "BundleIdentifier", Str( u"com.example.ed" ) } } );
    const struct
    {
        __SafeCFPropertyList mAction;
        const char* mDescription;
    } kCases[] = {
        { ActionDict( u"ActivateApplication", { { "Application", notes } } ), "Activate Notes" },
        { ActionDict( u"ActivateApplication", { { "Application", byIdentifier } } ), "Activate com.example.ed" },
        { ActionDict(
              u"ActivateApplication", { { "Application", notes }, { "AlreadyActivatedActionType", Str( u"Hide" ) } } ),
            "Activate or Hide Notes" },
        { ActionDict( u"ActivateApplication" ), "Activate a Specific Application" },
        { ActionDict( u"ApplyModifiersToApplication",
              { { "Application", notes }, { "Modifiers", __SafeCFPropertyList::Integer( 256 + 512 ) } } ),
            "Apply the Modifiers ⇧⌘ to Notes" },
        { ActionDict( u"ApplyModifiersToApplication", { { "Application", notes } } ), "Apply No Modifiers to Notes" },
        { ActionDict( u"QuitSpecificApp" ), "Quit the Front Application" },
        { ActionDict( u"QuitSpecificApp", { { "Application", notes }, { "Action", Str( u"ForceQuitRelaunch" ) } } ),
            "Force Quit and Relaunch Notes" },
        { ActionDict( u"QuitSpecificApp", { { "Target", Str( u"Specific" ) } } ), "Quit a Specific Application" },
        { ActionDict( u"QuitSpecificApp", { { "Target", Str( u"Front" ) }, { "Application", notes } } ),
            "Quit the Front Application" },
        { ActionDict( u"HideSpecificApp", { { "Application", notes } } ), "Hide Notes" },
        { ActionDict( u"ShowSpecificApp", { { "Application", App( u"iTunes" ) } } ), "Show Music" },
        { ActionDict( u"HideCurrent" ), "Hide Current Application" },
        { ActionDict( u"ShowAll", { { "ActionName", Str( u"Mine" ) } } ), "Mine" },
    };
    for ( const auto& [action, description] : kCases )
        EXPECT_EQ( Described( action ), description );
}

TEST( ApplicationActions, TypesThatShareAClassStayApart )
{
    const char16_t* const kTypes[] = { u"QuitOthers", u"QuitAll", u"HideOthers", u"HideAll", u"HideCurrent",
        u"ClipboardSwitcherCopy", u"ClipboardSwitcherCut", u"ClipboardSwitcherPaste" };
    std::set<Text> titles;
    for ( const char16_t* type : kTypes )
    {
        const auto action = HBaseAction::CreateFromPropertyList( ActionDict( type ) );
        EXPECT_EQ( KeyOf( action->Clone()->GetActionType() ), TextView( type ) );
        EXPECT_EQ( At( Saved( *action->Clone() ), "MacroActionType" ), Str( type ) );
        EXPECT_TRUE( titles.insert( action->GetActionTitle() ).second ) << UTF8FromText( type );
        for ( const char16_t* other : kTypes )
            EXPECT_EQ( action->CompareFields( *HBaseAction::CreateFromPropertyList( ActionDict( other ) ) ) == 0,
                TextView( type ) == other );
    }
}

TEST( ApplicationActions, AClickCanStandForActivatingAndQuittingButForFewOthers )
{
    const std::set<std::string> allowed = { "ActivateApplication", "ManipulateWindow", "QuitSpecificApp",
        "SelectMenuItem" };
    for ( std::size_t i = 0; i < kHActionTypeCount; ++i )
    {
        const auto action = HBaseAction::CreateActionOfType( HActionType( i ) );
        const std::string type = KeyOf( HActionType( i ) ).GetUTF8();
        EXPECT_TRUE( not action->CanBeInstigatedByClickAction() or allowed.contains( type ) ) << type;
        EXPECT_TRUE(
            action->CanBeInstigatedByClickAction() or ( type != "ActivateApplication" and type != "QuitSpecificApp" ) )
            << type;
    }
}

TEST( ApplicationActions, ListsOfApplicationsStandAsTheyAreAndAreFoundByName )
{
    // The second has a key that nobody here knows, the third is no application, the last is no dictionary.
    const auto list = Array( { App( u"Notes" ), With( App( u"Mail" ), "Odd", Array( { Bool( true ) } ) ),
        Dict( { { "Future", Str( u"x" ) } } ), Str( u"Finder" ) } );
    for ( const char16_t* type : { u"ProgramSwitcher", u"ApplicationLauncher" } )
    {
        const auto action = ActionDict( type, { { "IncludedApplications", list } } );
        EXPECT_EQ( At( Reloaded( action ), "IncludedApplications" ), list );
        for ( const char* name : { "Notes\n", "Mail\n" } )
            EXPECT_NE( WordsOf( action ).find( name ), std::string::npos ) << name;
    }
    for ( const auto& wrong : { Str( u"Notes" ), Bool( true ), __SafeCFPropertyList::Integer( 3 ) } )
        EXPECT_FALSE( At( Reloaded( ActionDict( u"ProgramSwitcher", { { "IncludedApplications", wrong } } ) ),
            "IncludedApplications" ) );
}

TEST( ApplicationActions, AnApplicationThatIsOnlyKeptIsNotFound )
{
    const auto open = ActionDict( u"Open1File", { { "Application", App( u"Notes" ) } } );
    EXPECT_NE( WordsOf( open ).find( "Notes" ), std::string::npos );
    const auto byDefault = With( open, "IsDefaultApplication", Bool( true ) );
    EXPECT_EQ( WordsOf( byDefault ).find( "Notes" ), std::string::npos );
    EXPECT_EQ( At( Reloaded( byDefault ), "Application" ), App( u"Notes" ) );
}
