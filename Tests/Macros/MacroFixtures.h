// What the tests of the macro store share: a world that stands still, and property lists of macros and groups that
// say only what a test is about.
#pragma once

#include "Actions/HActionList.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroInsertion.h"
#include "Tests/Actions/ActionTestSupport.h"
#include "Utility/Text/Localization.h"
#include "Utility/Work/Random.h"
#include "XCAF/XErrorHandler.h"

#include <gmock/gmock.h>

inline __SafeCFPropertyList Int( std::int64_t inValue )
{
    return __SafeCFPropertyList::Integer( inValue );
}

inline __SafeCFPropertyList Real( double inValue )
{
    return __SafeCFPropertyList::Real( inValue );
}

/// The dictionary with more keys, in place of equal ones.
inline __SafeCFPropertyList With(
    const __SafeCFPropertyList& inDictionary, std::initializer_list<PlistEntry> inEntries )
{
    XMutableDictionary dictionary;
    dictionary.SetAll( *inDictionary.AsDictionary() );
    for ( const auto& [key, value] : inEntries )
        dictionary.Set( XKey( key ), value );
    return dictionary.Seal();
}

/// A macro that loads: no triggers, no actions, set times; and what the test says.
inline __SafeCFPropertyList MacroWith( TextView inUID, std::initializer_list<PlistEntry> inEntries = {} )
{
    return With( Dict( { { "UID", Str( inUID ) }, { "Triggers", Array( {} ) }, { "Actions", Array( {} ) },
                     { "CreationDate", Real( 100 ) }, { "ModificationDate", Real( 200 ) } } ),
        inEntries );
}

inline __SafeCFPropertyList GroupWith( TextView inUID, std::initializer_list<__SafeCFPropertyList> inMacros,
    std::initializer_list<PlistEntry> inEntries = {} )
{
    return With( Dict( { { "UID", Str( inUID ) }, { "Name", Str( u"Group " + Text( inUID ) ) },
                     { "Macros", Array( inMacros ) }, { "CreationDate", Real( 100 ) } } ),
        inEntries );
}

inline __SafeCFPropertyList SmartGroupWith( TextView inUID, std::initializer_list<__SafeCFPropertyList> inStrings,
    std::initializer_list<PlistEntry> inEntries = {} )
{
    return With(
        Dict( { { "UID", Str( inUID ) }, { "SearchStrings", Array( inStrings ) }, { "CreationDate", Real( 100 ) } } ),
        inEntries );
}

inline __SafeCFPropertyList FileWith(
    std::initializer_list<__SafeCFPropertyList> inGroups, std::initializer_list<PlistEntry> inEntries = {} )
{
    return With( Dict( { { "MacroGroups", Array( inGroups ) } } ), inEntries );
}

inline __SafeCFPropertyList Targeting( TextView inType, std::initializer_list<const char16_t*> inApplications = {} )
{
    XMutableArray applications;
    for ( const char16_t* const application : inApplications )
        applications.Append( Dict( { { "Name", Str( application ) } } ) );
    return Dict( { { "Targeting", Str( inType ) }, { "TargetingApps", applications.Seal() } } );
}

inline __SafeCFPropertyList Trigger( TextView inKind, std::initializer_list<PlistEntry> inEntries = {} )
{
    return With( Dict( { { "MacroTriggerType", Str( inKind ) } } ), inEntries );
}

inline __SafeCFPropertyList HotKeyTrigger( std::int64_t inKeyCode, std::int64_t inModifiers = 256 )
{
    return Trigger( u"HotKey", { { "KeyCode", Int( inKeyCode ) }, { "Modifiers", Int( inModifiers ) } } );
}

/// With what the kind must have to be loaded and to be of use.
inline __SafeCFPropertyList LoadableTrigger( TextView inKind )
{
    if ( inKind == u"HotKey" )
        return HotKeyTrigger( 3 );
    if ( inKind == u"Time" )
        return Trigger( inKind, { { "ExecuteType", Str( u"Login" ) } } );
    if ( inKind == u"TypedString" )
        return Trigger( inKind, { { "TypedString", Str( u"teh" ) } } );
    if ( inKind == u"MIDI" )
        return Trigger( inKind, { { "Device", Str( u"Keys" ) }, { "Channel", Int( 1 ) }, { "Note", Int( 60 ) } } );
    if ( inKind == u"HID" )
        return Trigger( inKind,
            { { "ElementName", Str( u"Pedal" ) }, { "ElementVendorID", Int( 1 ) }, { "ElementProductID", Int( 2 ) },
                { "ElementDeviceUsagePage", Int( 3 ) }, { "ElementDeviceUsage", Int( 4 ) },
                { "ElementUsagePage", Int( 5 ) }, { "ElementUsage", Int( 6 ) }, { "ElementCookie", Int( 7 ) },
                { "ElementValue", Int( 8 ) } } );
    if ( inKind == u"Folder" )
        return Trigger( inKind, { { "Interest", Dict( { { "UID2", Str( u"I" ) } } ) } } );
    if ( inKind == u"Gesture" )
        return Trigger( inKind, { { "Gesture", Str( u"RDL" ) } } );
    if ( inKind == u"Idle" )
        return Trigger( inKind, { { "Idle", Int( 60 ) } } );
    return Trigger( inKind );
}

inline __SafeCFPropertyList ExecuteMacro( TextView inUID )
{
    return ActionDict( u"ExecuteMacro", { { "MacroUID", Str( inUID ) } } );
}

inline Text TextAt( const __SafeCFPropertyList& inDictionary, std::string_view inKey )
{
    const __SafeCFPropertyList value = At( inDictionary, inKey );
    return value.AsString() ? value.AsString()->GetText() : Text();
}

/// What the actions of a saved macro refer to.
inline std::vector<Text> ReferencesOf( const __SafeCFPropertyList& inMacro )
{
    std::vector<Text> references;
    for ( const XPlistNode* const action : At( inMacro, "Actions" ).AsArray()->Nodes() )
        references.push_back( TextAt( __SafeCFPropertyList( action ), "MacroUID" ) );
    return references;
}

/// What every save writes anew is taken out.
inline __SafeCFPropertyList WithoutStamps( const __SafeCFPropertyList& inFile )
{
    return With(
        inFile, { { "PreferenceSavedDate", nullptr }, { "PreferenceSaveUUID", nullptr }, { "Version", nullptr } } );
}

inline std::vector<std::string> KeysOf( const __SafeCFPropertyList& inDictionary )
{
    std::vector<std::string> keys;
    for ( const auto& entry : inDictionary.AsDictionary()->GetEntries() )
        keys.push_back( entry.mKey->GetUTF8() );
    return keys;
}

/// An insertion that is ended, without rewriting anything, if the test hasn't ended it.
class InsertionScope
{
public:
    InsertionScope() { MMacroInsertion::Start(); }
    ~InsertionScope()
    {
        if ( MMacroInsertion::CurrentlyInserting() )
            MMacroInsertion::Finish();
    }
    InsertionScope( const InsertionScope& ) = delete;
    InsertionScope& operator=( const InsertionScope& ) = delete;
};

/// A clock and UUIDs that can be foretold, and the store's tags switched on in a log that is only remembered.
class MacroWorld : public testing::Test
{
protected:
    MacroWorld()
    {
        XErrorHandler::ResetForTesting();
        XErrorHandler::SetPreferenceSource(
            { []( TextView ) { return std::optional<Text>( u"UID MacroInsertion ExportToSpotlightIndex" ); },
                []( TextView ) { return std::optional<bool>(); } } );
        (void)XErrorHandler::MaybeShouldLog( "UID" ); // reads the settings, and says so in the log
        (void)mLog.Take();
    }
    ~MacroWorld() override { XErrorHandler::ResetForTesting(); }

    std::unique_ptr<MMacro> LoadedMacro( const __SafeCFPropertyList& inValue )
    {
        const InsertionScope insertion;
        return std::make_unique<MMacro>( inValue );
    }
    std::unique_ptr<MMacroGroup> LoadedGroup( const __SafeCFPropertyList& inValue )
    {
        const InsertionScope insertion;
        return std::make_unique<MMacroGroup>( inValue, nullptr );
    }
    std::unique_ptr<MMacroSmartGroup> LoadedSmartGroup( const __SafeCFPropertyList& inValue )
    {
        const InsertionScope insertion;
        return std::make_unique<MMacroSmartGroup>( inValue );
    }

    LogCapture mLog;
    XManualClock mClock{ 700000000 };
    XClock::Substitute mClockInUse{ mClock };
    XSeededRandom mRandom{ 1 };
    XRandom::Substitute mRandomInUse{ mRandom };
};

/// The same with a domain.
class DomainWorld : public MacroWorld
{
protected:
    __SafeCFPropertyList SavedAfterLoading( const __SafeCFPropertyList& inFile )
    {
        mDomain.LoadFromPropertyList( inFile );
        return mDomain.GetPropertyList();
    }
    /// The only entry of a file's group array.
    static __SafeCFPropertyList OnlyEntry( const __SafeCFPropertyList& inFile )
    {
        const __SafeCFPropertyList groups = At( inFile, "MacroGroups" );
        EXPECT_EQ( groups.AsArray()->GetCount(), 1u );
        return groups.AsArray()->GetValueAt( 0 );
    }
    static MMacro& FoundMacro( TextView inUID )
    {
        MMacro* const macro = MMacroSerializedObject::FindMacroByUID( inUID );
        if ( not macro )
            throw std::runtime_error( "no macro " + UTF8FromText( inUID ) );
        return *macro;
    }
    static MMacroGroup& FoundGroup( TextView inUID )
    {
        MMacroGroup* const group = MMacroSerializedObject::FindMacroGroupByUID( inUID );
        if ( not group )
            throw std::runtime_error( "no group " + UTF8FromText( inUID ) );
        return *group;
    }

    MMacroDomain mDomain;
};
