// The legacy types of action, each of which becomes its modern form while it is read.
#include "ActionTestSupport.h"

#include "Tests/ClipboardSwitcher/FakeClipboardNames.h"

namespace
{
struct Upgrade
{
    __SafeCFPropertyList mRead, mExpected;
};

// The three kinds of clipboard as the older types have them, and as the keys of a source.
struct ClipboardForm
{
    std::vector<std::pair<std::string, __SafeCFPropertyList>> mOlder, mSource;
};

std::vector<ClipboardForm> ClipboardForms()
{
    const std::pair<std::string, __SafeCFPropertyList> named( "TargetUseNamedClipboard", Bool( true ) ),
        trigger( "TargetUseTriggerClipboard", Bool( true ) ), uid( "TargetNamedClipboardUID", Str( u"U-1" ) ),
        name( "TargetNamedClipboardRedundantDisplayName", Str( u"Notes" ) );
    const std::vector<std::pair<std::string, __SafeCFPropertyList>> namedSource = { { "Source",
                                                                                        Str( u"NamedClipboard" ) },
        { "NamedClipboardName", Str( u"U-1" ) }, { "RedundandDisplayName", Str( u"Notes" ) } };
    return {
        { {}, { { "Source", Str( u"Clipboard" ) } } },
        { { uid, name }, { { "Source", Str( u"Clipboard" ) } } },
        { { trigger }, { { "Source", Str( u"TriggerClipboard" ) } } },
        { { named, uid, name }, namedSource },
        { { named, trigger, uid, name }, namedSource },
    };
}

__SafeCFPropertyList WithAll(
    __SafeCFPropertyList ioDictionary, const std::vector<std::pair<std::string, __SafeCFPropertyList>>& inEntries )
{
    for ( const auto& [key, value] : inEntries )
        ioDictionary = With( ioDictionary, key, value );
    return ioDictionary;
}

const __SafeCFPropertyList& Captures()
{
    static const auto gCaptures = Array( { Str( u"First" ), Dict( { { "Odd", Bool( true ) } } ) } );
    return gCaptures;
}

std::vector<Upgrade> ClipboardUpgrades()
{
    std::vector<Upgrade> upgrades;
    for ( const ClipboardForm& form : ClipboardForms() )
    {
        upgrades.push_back(
            { WithAll( ActionDict( u"FilterClipboard", { { "Action", Str( u"Uppercase" ) } } ), form.mOlder ),
                WithAll( ActionDict( u"Filter", { { "Action", Str( u"Uppercase" ) } } ), form.mSource ) } );
        const auto search = [&]( TextView inType ) {
            return ActionDict( inType,
                { { "Action", Str( u"IgnoreCaseRegEx" ) }, { "Search", Str( u"a+" ) }, { "Captures", Captures() } } );
        };
        upgrades.push_back( { WithAll( search( u"SearchClipboard" ), form.mOlder ),
            WithAll( search( u"SearchRegEx" ), form.mSource ) } );
        const auto replace = [&]( TextView inType ) {
            return ActionDict( inType,
                { { "Action", Str( u"IgnoreCaseString" ) }, { "Search", Str( u"a" ) }, { "Replace", Str( u"b" ) } } );
        };
        upgrades.push_back( { WithAll( replace( u"SearchReplaceClipboard" ), form.mOlder ),
            WithAll( replace( u"SearchReplace" ), form.mSource ) } );
    }
    return upgrades;
}

std::vector<Upgrade> VariableUpgrades()
{
    std::vector<Upgrade> upgrades;
    for ( const auto& [older, name] : { std::pair( Str( u"Total" ), u"Total" ), std::pair( Str( u"" ), u"" ),
              std::pair( __SafeCFPropertyList(), u"VarName" ), std::pair( Bool( true ), u"VarName" ) } )
    {
        const auto source = [name = name]( const __SafeCFPropertyList& inAction ) {
            return With( With( inAction, "Source", Str( u"Variable" ) ), "Variable", Str( name ) );
        };
        upgrades.push_back(
            { With( ActionDict( u"FilterVariable", { { "Action", Str( u"Tabs" ) } } ), "Variable", older ),
                source( ActionDict( u"Filter", { { "Action", Str( u"Tabs" ) } } ) ) } );
        upgrades.push_back(
            { With( ActionDict( u"SearchVariable", { { "Search", Str( u"x" ) }, { "Captures", Captures() } } ),
                  "Variable", older ),
                source( ActionDict( u"SearchRegEx",
                    { { "Action", Str( u"CaseSensitiveRegEx" ) }, { "Search", Str( u"x" ) },
                        { "Captures", Captures() } } ) ) } );
        upgrades.push_back( { With( ActionDict( u"SearchReplaceVariable", { { "Action", Str( u"IgnoreCaseRegEx" ) } } ),
                                  "Variable", older ),
            source( ActionDict( u"SearchReplace",
                { { "Action", Str( u"IgnoreCaseRegEx" ) }, { "Search", Str( u"" ) },
                    { "Replace", Str( u"" ) } } ) ) } );
    }
    return upgrades;
}

// A reference of two texts, and which of them the copied clipboard keeps.
std::vector<Upgrade> NamedClipboardUpgrades()
{
    std::vector<Upgrade> upgrades;
    for ( const auto& [type, prefix] : { std::pair( u"SetClipboardToNamedClipboard", "Source" ),
              std::pair( u"SaveClipboardToNamedClipboard", "Target" ) } )
    {
        for ( const auto& [uid, name] :
            { std::pair( u"U-1", u"Notes" ), std::pair( u"", u"Notes" ), std::pair( u"U-1", u"" ) } )
        {
            const std::string keys = prefix;
            upgrades.push_back(
                { ActionDict( type, { { "Name", Str( uid ) }, { "RedundandDisplayName", Str( name ) } } ),
                    WithAll( ActionDict( u"CopyClipboard" ),
                        { { keys + "UseNamedClipboard", Bool( true ) }, { keys + "NamedClipboardUID", Str( uid ) },
                            { keys + "NamedClipboardRedundantDisplayName", Str( name ) } } ) } );
        }
        upgrades.push_back( { ActionDict( type ), ActionDict( u"CopyClipboard" ) } );
        upgrades.push_back( { ActionDict( type, { { "Name", Bool( true ) }, { "RedundandDisplayName", Str( u"" ) } } ),
            ActionDict( u"CopyClipboard" ) } );
    }
    return upgrades;
}

std::vector<Upgrade> AllUpgrades()
{
    std::vector<Upgrade> upgrades = ClipboardUpgrades();
    for ( auto more : { VariableUpgrades(), NamedClipboardUpgrades() } )
        upgrades.insert( upgrades.end(), more.begin(), more.end() );
    upgrades.push_back( { ActionDict( u"FilterClipboard", { { "Action", Str( u"uppercase" ) } } ),
        ActionDict( u"Filter", { { "Source", Str( u"Clipboard" ) }, { "Action", Str( u"Capitalize" ) } } ) } );
    upgrades.push_back( { ActionDict( u"Growl", { { "Title", Str( u"A" ) }, { "Text", Str( u"B" ) } } ),
        ActionDict( u"Notification",
            { { "Title", Str( u"A" ) }, { "Subtitle", Str( u"" ) }, { "Text", Str( u"B" ) },
                { "SoundName", Str( u"" ) } } ) } );
    return upgrades;
}

class TypeUpgrades final : public MLoadObserver
{
public:
    void DidDrop( const XPlistArray&, std::size_t, TextView ) override { ADD_FAILURE(); }
    void DidReadOlderKey( const XPlistDictionary&, const XKey&, const XKey& ) override {}
    void DidUpgradeType( const XPlistDictionary&, TextView inOlder, TextView inCurrent ) override
    {
        mTypes.emplace_back( inOlder, inCurrent );
    }
    void DidUpgradeValue( const XPlistDictionary&, const XKey&, TextView ) override {}
    void DidRepair( const XPlistDictionary&, const XKey&, MLoadRule, TextView ) override {}
    void DidReadUID( const XPlistDictionary&, const XText&, const XText& ) override {}

    std::vector<std::pair<Text, Text>> mTypes;
};

Text TypeOf( const __SafeCFPropertyList& inAction )
{
    return At( inAction, "MacroActionType" ).AsString()->GetText();
}
} // namespace

TEST( LegacyActions, ReadAsTheirModernForms )
{
    for ( const auto& [read, expected] : AllUpgrades() )
    {
        TypeUpgrades observer;
        const MLoadObserver::Scope scope( observer );
        const auto modern = Reloaded( read );
        EXPECT_EQ( modern, expected ) << Shown( read ) << Shown( modern ) << Shown( expected );
        ASSERT_EQ( observer.mTypes.size(), 1u );
        EXPECT_EQ( observer.mTypes[0], std::pair( TypeOf( read ), TypeOf( expected ) ) );
        EXPECT_EQ( Reloaded( modern ), modern );
        EXPECT_EQ( observer.mTypes.size(), 1u ) << "the modern form is upgraded again";
    }
}

TEST( LegacyActions, KeepTheirBaseProperties )
{
    for ( const auto& [read, expected] : AllUpgrades() )
    {
        const auto withBase = []( const __SafeCFPropertyList& inAction ) {
            return WithAll( inAction,
                { { "IsActive", Bool( false ) }, { "IsDisclosed", Bool( false ) }, { "ActionColor", Str( u"Teal" ) },
                    { "ActionName", Str( u"Mine" ) }, { "ActionNotes", Str( u"Why" ) } } );
        };
        EXPECT_EQ( Reloaded( withBase( read ) ), withBase( expected ) ) << Shown( read );
    }
    // The modern types can fail, even where the older one couldn't.
    const auto read = ActionDict(
        u"SearchReplaceVariable", { { "StopOnFailure", Bool( true ) }, { "NotifyOnFailure", Bool( false ) } } );
    EXPECT_EQ( At( Reloaded( read ), "StopOnFailure" ), Bool( true ) );
    EXPECT_EQ( At( Reloaded( read ), "NotifyOnFailure" ), Bool( false ) );
}

TEST( LegacyActions, ANamedClipboardIsSavedAsTheStoreKnowsIt )
{
    const FakeClipboardNames store{ { u"U-1", u"Renamed" } };
    const auto read = ActionDict(
        u"SetClipboardToNamedClipboard", { { "Name", Str( u"U-1" ) }, { "RedundandDisplayName", Str( u"N" ) } } );
    EXPECT_EQ( At( Reloaded( read ), "SourceNamedClipboardRedundantDisplayName" ), Str( u"Renamed" ) );
    // With nothing to go by it is the system clipboard still, not the store's one without a name.
    EXPECT_EQ( Reloaded( ActionDict( u"SetClipboardToNamedClipboard" ) ), ActionDict( u"CopyClipboard" ) );
}
