// Random macros files: good ones, as they were saved, and damage to them at random places.
#pragma once

#include "Conditions/CConditionList.h"
#include "Tests/CFMethods/RandomPropertyList.h"
#include "Tests/Macros/MacroFixtures.h"

class RandomMacrosFile
{
public:
    explicit RandomMacrosFile( std::uint64_t inSeed ) : mRandom( inSeed ), mValues( inSeed, Options() ) {}

    /// A file whose every key may be missing, odd or of the wrong type, and whose UIDs often collide.
    [[nodiscard]] __SafeCFPropertyList Next()
    {
        XMutableDictionary file;
        file.Set( CFSTR( "MacroGroups" ), Several( 4, [this] { return Below( 3 ) ? Group() : SmartGroup(); } ) );
        Maybe( file, "MacroPreferencesVersion", Int( 91 ) );
        Maybe( file, "MacroDefaultsVersion", Int( std::int64_t( Below( 7 ) ) << Below( 40 ) ) );
        Maybe( file, "PreferenceSavedDate", Str( u"2024_03_01" ) );
        Maybe( file, "PreferenceSaveUUID", Str( u"U" ) );
        return file.Seal();
    }

    /// The value with one place in it changed: a value replaced, a key or element taken out or added.
    [[nodiscard]] __SafeCFPropertyList Damaged( const __SafeCFPropertyList& inValue )
    {
        // Going deeper is likelier than staying, so that damage reaches every level.
        if ( const XPlistArray* const array = inValue.AsArray(); array and array->GetCount() > 0 and Below( 6 ) > 0 )
        {
            const std::size_t place = Below( array->GetCount() );
            XMutableArray changed;
            for ( std::size_t i = 0; i < array->GetCount(); ++i )
            {
                if ( i != place )
                    changed.Append( array->GetValueAt( i ) );
                else if ( Below( 12 ) > 0 ) // otherwise it goes
                    changed.Append( Damaged( array->GetValueAt( i ) ) );
            }
            return changed.Seal();
        }
        const XPlistDictionary* const dictionary = inValue.AsDictionary();
        if ( dictionary and dictionary->GetCount() > 0 and Below( 12 ) > 0 )
        {
            XMutableDictionary changed;
            changed.SetAll( *dictionary );
            const auto& entry = dictionary->GetEntries()[Below( dictionary->GetCount() )];
            const XText key( CFContainer<XPlistString>::Share( entry.mKey ) );
            switch ( Below( 10 ) )
            {
            case 0:
                changed.Set( key, nullptr );
                break;
            case 1:
                changed.Set( XText( key.GetText() + u"X" ), __SafeCFPropertyList( entry.mValue ) );
                break;
            default:
                changed.Set( key, Damaged( __SafeCFPropertyList( entry.mValue ) ) );
            }
            return changed.Seal();
        }
        return Below( 3 ) ? mValues.Leaf() : mValues.Next();
    }

    [[nodiscard]] std::size_t Below( std::size_t inLimit ) { return mRandom() % inLimit; }

private:
    static RandomPropertyListOptions Options()
    {
        RandomPropertyListOptions options;
        options.mLongLengths = false;
        options.mMostDepth = 2;
        return options;
    }

    template<class Make>
    __SafeCFPropertyList Several( std::size_t inMost, const Make& inMake )
    {
        XMutableArray array;
        for ( std::size_t count = Below( inMost + 1 ); count > 0; --count )
            array.Append( Below( 40 ) ? inMake() : mValues.Next() );
        return array.Seal();
    }
    void Maybe( XMutableDictionary& ioDictionary, std::string_view inKey, const __SafeCFPropertyList& inValue )
    {
        if ( const std::size_t choice = Below( 12 ) )
            ioDictionary.Set( XKey( inKey ), choice == 1 ? mValues.Leaf() : inValue );
    }
    __SafeCFPropertyList UID() { return Str( u"UID-" + Text( 1, char16_t( u'A' + Below( 26 ) ) ) ); }
    __SafeCFPropertyList Name( std::size_t inNames )
    {
        static constexpr TextView kNames[] = { u"One", u"Global Macro Group", u"All Macros", u"",
            u"Untitled Macro Group", u"Untitled Smart Group", u"Two\nlines", u"Untitled Macro" };
        return Below( 3 ) ? Str( kNames[Below( inNames )] ) : Str( mValues.String() );
    }
    __SafeCFPropertyList NameOf( std::span<const std::string_view> inNames )
    {
        return Str( TextFromASCII( inNames[Below( inNames.size() )] ) );
    }
    __SafeCFPropertyList NameOf( std::span<const TextView> inNames ) { return Str( inNames[Below( inNames.size() )] ); }

    // Those of every type, most without the keys that they could have.
    __SafeCFPropertyList Conditions()
    {
        XMutableDictionary list;
        Maybe( list, "ConditionListMatch", NameOf( kConditionListMatchNames ) );
        list.Set( CFSTR( "ConditionList" ), Several( 3, [this] {
            XMutableDictionary condition;
            condition.Set( CFSTR( "ConditionType" ), NameOf( kConditionTypeNames ) );
            Maybe( condition, "KeyCode", __SafeCFPropertyList::Integer( std::int64_t( Below( 128 ) ) ) );
            Maybe( condition, "Text", Str( mValues.String() ) );
            Maybe( condition, "IsFrontApplication", Bool( Below( 2 ) == 0 ) );
            Maybe( condition, "PixelConditionType", Str( u"IsDarker" ) );
            return __SafeCFPropertyList( condition.Seal() );
        } ) );
        return list.Seal();
    }

    void Base( XMutableDictionary& ioObject )
    {
        Maybe( ioObject, "UID", UID() );
        Maybe( ioObject, "Name", Name( 8 ) );
        Maybe( ioObject, "CreationDate", Real( double( Below( 3 ) ) * 0.7 ) );
        Maybe( ioObject, "IsActive", Bool( Below( 2 ) == 0 ) );
        if ( Below( 4 ) == 0 )
            ioObject.Set( CFSTR( "CustomIconData" ), Str( TextView( XIcon::kDefaultCustomIcon ) ) );
    }
    __SafeCFPropertyList SmartGroup()
    {
        XMutableDictionary group;
        Base( group );
        Maybe( group, "SearchStrings", Several( 3, [this] { return Str( mValues.String() ); } ) );
        return group.Seal();
    }
    __SafeCFPropertyList Group()
    {
        XMutableDictionary group;
        Base( group );
        Maybe( group, "Activate", NameOf( kMacroGroupActivateNames ) );
        Maybe( group, "KeyCode", Int( std::int64_t( Below( 70000 ) ) ) );
        Maybe( group, "Modifiers", Int( std::int64_t( Below( 70000 ) ) << Below( 20 ) ) );
        for ( const char* const flag :
            { "AddToMacroPalette", "AddToStatusMenu", "DisplayToggle", "PaletteUnderMouse" } )
            Maybe( group, flag, Bool( Below( 2 ) == 0 ) );
        XMutableDictionary target;
        Maybe( target, "Targeting", NameOf( kMacroAppTargetTypeNames ) );
        Maybe( target, "TargetingApps", Several( 2, [this] {
            return Dict(
                { { "Name", Str( Below( 2 ) ? u"iTunes" : u"App" ) }, { "BundleIdentifier", Str( u"com.x" ) } } );
        } ) );
        Maybe( group, "Targeting", target.Seal() );
        Maybe( group, "FocussedWindowConditionType", NameOf( kFrontWindowConditionTypeNames ) );
        Maybe( group, "FocussedWindowTitle", Str( mValues.String() ) );
        if ( Below( 3 ) == 0 )
            group.Set( CFSTR( "Theme" ), Dict( { { "x", mValues.Next() } } ) );
        Maybe( group, "ToggleMacroUID", UID() );
        Maybe( group, "DisabledMacs", Several( 3, [this] { return UID(); } ) );
        Maybe( group, "Macros", Several( 4, [this] { return Macro(); } ) );
        return group.Seal();
    }
    __SafeCFPropertyList Macro()
    {
        XMutableDictionary macro;
        Base( macro );
        Maybe( macro, "ModificationDate", Real( double( Below( 4 ) ) * 0.6 ) );
        Maybe( macro, "Triggers", Several( 3, [this] {
            return With( LoadableTrigger( TextFromASCII( kTriggerTypeNames[Below( std::size( kTriggerTypeNames ) )] ) ),
                "More", mValues.Next() );
        } ) );
        Maybe( macro, "Actions", Several( 3, [this] { return Action( 2 ); } ) );
        return macro.Seal();
    }
    __SafeCFPropertyList Action( unsigned inDepth )
    {
        switch ( Below( 5 ) )
        {
        case 0:
            return ExecuteMacro( u"UID-A" );
        case 1:
            return ActionDict( u"Comment", { { "Title", Str( mValues.String() ) }, { "IsActive", Bool( false ) } } );
        case 2:
            return ActionDict( u"Pause", { { "Time", Str( u"1" ) }, { "StopOnFailure", Bool( true ) } } );
        case 3:
            return ActionDict( u"Growl", { { "Title", Str( u"T" ) }, { "Text", Str( mValues.String() ) } } );
        default:
            const auto nested = [&] { return inDepth ? Action( inDepth - 1 ) : ExecuteMacro( u"UID-B" ); };
            return ActionDict( u"IfThenElse",
                { { "Conditions", Conditions() }, { "ThenActions", Several( 2, nested ) },
                    { "ElseActions", Several( 2, nested ) } } );
        }
    }

    std::mt19937_64 mRandom;
    RandomPropertyList mValues;
};
