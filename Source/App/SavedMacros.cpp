#include "App/SavedMacros.h"

#include "Actions/ActionLimits.h"
#include "App/DifferenceText.h"
#include "App/MacrosFile.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/TextCompare.h"
#include "XCAF/XException.h"

#include <algorithm>
#include <fmt/format.h>

namespace
{
struct Insertion
{
    Insertion() { MMacroInsertion::Start(); }
    ~Insertion() { MMacroInsertion::Finish(); }
    Insertion( const Insertion& ) = delete;
    Insertion& operator=( const Insertion& ) = delete;
};

XText TextAt( const __SafeCFPropertyList& inValue, const XKey& inKey )
{
    XText text;
    if ( const XPlistDictionary* const dictionary = inValue.AsDictionary() )
        (void)dictionary->Get( inKey, text );
    return text;
}

CFContainer<XPlistArray> ArrayAt( const __SafeCFPropertyList& inValue, const XKey& inKey )
{
    CFContainer<XPlistArray> array;
    if ( const XPlistDictionary* const dictionary = inValue.AsDictionary() )
        (void)dictionary->Get( inKey, array );
    return array;
}

/// A macro without a name is called by its first action, which has to be loaded to be asked.
Text NameOfMacro( const __SafeCFPropertyList& inMacro )
{
    if ( const XText name = TextAt( inMacro, CFSTR( "Name" ) ); not IsEmpty( name ) )
        return name.GetText();
    try
    {
        const Insertion insertion;
        return MMacro( inMacro ).GetName();
    }
    catch ( const XException& )
    {
        return kvr_localized( u"kvUntitledMacro" );
    }
}

Text NameOfEntry( const __SafeCFPropertyList& inEntry, TextView inUntitledKey )
{
    const XText name = TextAt( inEntry, CFSTR( "Name" ) );
    return IsEmpty( name ) ? kvr_localized( inUntitledKey ) : name.GetText();
}

SavedObject Described( SavedObject::Kind inKind, const __SafeCFPropertyList& inValue )
{
    SavedObject object;
    object.mKind = inKind;
    object.mValue = inValue;
    object.mUID = TextAt( inValue, CFSTR( "UID" ) );
    if ( const XPlistDictionary* const dictionary = inValue.AsDictionary() )
        (void)dictionary->Get( CFSTR( "IsActive" ), object.mIsActive );
    return object;
}

void AppendGroup( const __SafeCFPropertyList& inGroup, std::vector<SavedObject>& ioObjects )
{
    SavedObject group = Described( SavedObject::Kind::kGroup, inGroup );
    group.mName = NameOfEntry( inGroup, u"kvUntitledMacroGroup" );
    const auto macros = ArrayAt( inGroup, CFSTR( "Macros" ) );
    group.mMacroCount = macros->GetCount();
    ioObjects.push_back( group );
    for ( std::size_t i = 0; i < macros->GetCount(); ++i )
    {
        SavedObject macro = Described( SavedObject::Kind::kMacro, macros->GetValueAt( i ) );
        macro.mName = NameOfMacro( macro.mValue );
        macro.mGroup = inGroup;
        macro.mGroupName = group.mName;
        ioObjects.push_back( std::move( macro ) );
    }
}

bool IsGroup( const __SafeCFPropertyList& inEntry )
{
    return bool( ArrayAt( inEntry, CFSTR( "Macros" ) ) );
}

__SafeCFPropertyList WithoutStamps( const __SafeCFPropertyList& inFile )
{
    XMutableDictionary dictionary;
    for ( const auto& [key, value] : inFile.AsDictionary()->GetEntries() )
    {
        if ( not key->Equals( "PreferenceSavedDate" ) and not key->Equals( "PreferenceSaveUUID" ) and
            not key->Equals( "Version" ) )
            dictionary.Set( XText( CFContainer<XPlistString>::Share( key ) ), __SafeCFPropertyList( value ) );
    }
    return dictionary.Seal();
}

/// Names the groups and macros on the way: .MacroGroups[3].Macros[0].Actions[1] as “Group › Macro .Actions[1]”.
std::string NamedPath( const __SafeCFPropertyList& inFile, std::span<const XPlistPathStep> inPath, XPlistSide inSide )
{
    const auto index = [&]( std::size_t step ) {
        return inSide == XPlistSide::kOld ? inPath[step].mIndex : inPath[step].mNewIndex;
    };
    const auto groups = ArrayAt( inFile, CFSTR( "MacroGroups" ) );
    if ( inPath.size() < 2 or not inPath[0].mKey.Equals( u"MacroGroups" ) or index( 1 ) >= groups->GetCount() )
        return PathText( inPath, inSide );
    const __SafeCFPropertyList entry = groups->GetValueAt( index( 1 ) );
    std::string place =
        UTF8FromText( NameOfEntry( entry, IsGroup( entry ) ? u"kvUntitledMacroGroup" : u"kvUntitledMacroSmartGroup" ) );
    std::size_t used = 2;
    const auto macros = ArrayAt( entry, CFSTR( "Macros" ) );
    if ( macros and inPath.size() >= 4 and inPath[2].mKey.Equals( u"Macros" ) and index( 3 ) < macros->GetCount() )
    {
        place += " › " + UTF8FromText( NameOfMacro( macros->GetValueAt( index( 3 ) ) ) );
        used = 4;
    }
    return used == inPath.size() ? place : place + " " + PathText( inPath.subspan( used ), inSide );
}

} // namespace

std::string SavedObject::Place() const
{
    return ( mKind == Kind::kMacro ? UTF8FromText( mGroupName ) + " › " : "" ) + UTF8FromText( mName );
}

XMutableDictionary SavedObject::Facts() const
{
    constexpr const char16_t* kKinds[] = { u"SOKSmartGroup", u"SOKMacroGroup", u"SOKMacro" };
    XMutableDictionary facts;
    facts.SetText( CFSTR( "kind" ), kvr_localized( kKinds[std::size_t( mKind )] ) );
    facts.SetText( CFSTR( "name" ), mName );
    if ( not IsEmpty( mUID ) )
        facts.SetText( CFSTR( "uid" ), mUID );
    facts.SetBoolean( CFSTR( "active" ), mIsActive );
    if ( mKind == Kind::kMacro )
        facts.SetText( CFSTR( "group" ), mGroupName );
    if ( mKind == Kind::kGroup )
        facts.SetInteger( CFSTR( "macros" ), std::int64_t( mMacroCount ) );
    return facts;
}

SavedMacros::SavedMacros( std::span<const std::uint8_t> inBytes, std::string inWords ) : mWords( std::move( inWords ) )
{
    const XPlistReadResult properties = ReadPropertyList( inBytes, kActionsPlistLimits );
    if ( not properties.mValue )
        throw FileTrouble( mWords +
            " can't be understood as a property list; “korvalen revisions list” and “korvalen set-aside list” "
            "show other states" );
    if ( not ArrayAt( properties.mValue, CFSTR( "MacroGroups" ) ) )
        throw FileTrouble( mWords + " is a property list, but no macros file" );
    mValue = properties.mValue;
}

std::vector<SavedObject> SavedMacros::Objects() const
{
    std::vector<SavedObject> objects;
    const auto entries = ArrayAt( mValue, CFSTR( "MacroGroups" ) );
    for ( std::size_t i = 0; i < entries->GetCount(); ++i )
    {
        const __SafeCFPropertyList entry = entries->GetValueAt( i );
        if ( IsGroup( entry ) )
            AppendGroup( entry, objects );
        else if ( ArrayAt( entry, CFSTR( "SearchStrings" ) ) )
        {
            objects.push_back( Described( SavedObject::Kind::kSmartGroup, entry ) );
            objects.back().mName = NameOfEntry( entry, u"kvUntitledMacroSmartGroup" );
        }
    }
    return objects;
}

std::vector<SavedObject> SavedMacros::Find( const std::string& inNameOrUID ) const
{
    const Text name = TextFromUTF8( inNameOrUID );
    std::vector<SavedObject> found;
    for ( SavedObject& object : Objects() )
    {
        if ( not IsEmpty( object.mUID ) and object.mUID.Equals( name ) )
            return { std::move( object ) };
        if ( kvr_caseInsensitiveIsEqualToString( object.mName, name ) )
            found.push_back( std::move( object ) );
    }
    return found;
}

void SavedMacros::Print( bool inAsJSON, Output& ioOutput ) const
{
    XMutableArray facts;
    for ( const SavedObject& object : Objects() )
    {
        if ( inAsJSON )
        {
            facts.Append( object.Facts().Seal() );
            continue;
        }
        const bool isMacro = object.mKind == SavedObject::Kind::kMacro;
        ioOutput.Text(
            ( isMacro ? "    " : "" ) + UTF8FromText( object.mName ), isMacro ? Colour::kNone : Colour::kBold );
        if ( not isMacro )
            ioOutput.Text( object.mKind == SavedObject::Kind::kSmartGroup
                    ? "  (smart group)"
                    : fmt::format( "  ({})", Counted( object.mMacroCount, "macro" ) ) );
        ioOutput.Line( object.mIsActive ? "" : " (disabled)", Colour::kYellow );
    }
    if ( inAsJSON )
        ioOutput.JSON( facts.Seal() );
}

std::uint64_t SavedMacros::PrintDifferencesTo( const SavedMacros& inLater, bool inAsJSON, Output& ioOutput ) const
{
    const XPlistDifferences differences = FindDifferences( WithoutStamps( mValue ), WithoutStamps( inLater.mValue ) );
    const PathNamer namer = [&]( std::span<const XPlistPathStep> path, XPlistSide side ) {
        return NamedPath( side == XPlistSide::kOld ? mValue : inLater.mValue, path, side );
    };
    ShowDifferences( differences, inAsJSON, ioOutput, namer );
    return differences.mCount;
}

SavedMacros ReadPresentMacros()
{
    const std::filesystem::path path = MMacroPreferenceFile::MacrosFilePath();
    const XFileContent content = ReadWholeFile( path, FileInput::kMostBytes );
    if ( content.mError )
        throw FileTrouble( fmt::format(
            "the macros file {} can't be read: {}", QuotedPath( path.native() ), content.mError->Describe() ) );
    return { content.mBytes.Span(), "the macros file " + QuotedPath( path.native() ) };
}
