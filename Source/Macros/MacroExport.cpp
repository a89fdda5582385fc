#include "Macros/MacroExport.h"

#include "Actions/ActionLimits.h"
#include "Actions/HActionList.h"
#include "CFMethods/PropertyListText.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroGroup.h"
#include "Macros/MMacroSmartGroup.h"
#include "Platform/Platform.h"
#include "Utility/Text/Localization.h"
#include "XCAF/ErrorAlert.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <map>

namespace
{
struct ByUID
{
    bool operator()( const MMacroSerializedObject* a, const MMacroSerializedObject* b ) const
    {
        return MMacroSerializedObject::CompareByUID( a, b ) < 0;
    }
};
using Chosen = std::map<const MMacroGroup*, std::set<const MMacro*>, ByUID>;

// The export of a group with one macro has the shape; its macros are replaced by all that were chosen, in their order.
__SafeCFPropertyList GroupWith( const MMacroGroup& inGroup, const std::set<const MMacro*>& inMacros )
{
    if ( inMacros.empty() )
        return inGroup.CopyToPropertyList();
    XMutableDictionary group;
    group.SetAll( *inGroup.CopyOneMacroToPropertyListForExport( *inMacros.begin() ).AsDictionary() );
    XMutableArray macros;
    inGroup.DoForEveryMacro( [&]( const MMacro& macro ) {
        if ( inMacros.contains( &macro ) )
            macros.Append( macro.CopyToPropertyList() );
    } );
    group.Set( CFSTR( "Macros" ), macros.Seal() );
    return group.Seal();
}

CFContainer<XPlistArray> EntriesOf(
    const std::set<const MMacroSmartGroup*, ByUID>& inSmartGroups, const Chosen& inChosen )
{
    XMutableArray entries;
    for ( const MMacroSmartGroup* const smartGroup : inSmartGroups )
        entries.Append( smartGroup->CopyToPropertyList() );
    for ( const auto& [group, macros] : inChosen )
        entries.Append( GroupWith( *group, macros ) );
    return entries.Seal();
}

Text NameOf( const XPlistDictionary& inElement )
{
    XText name, uid;
    if ( inElement.Get( CFSTR( "Name" ), name ) and not name.IsEmpty() )
        return TextFromUTF8( ShownText( name.GetText() ) );
    // Its name follows its first action.
    if ( const MMacroSerializedObject* const object =
             inElement.Get( CFSTR( "UID" ), uid ) ? MMacroSerializedObject::FindObjectByUID( uid ) : nullptr )
        return TextFromUTF8( ShownText( object->GetName() ) );
    return uid.GetText();
}

// The first element that can't be written by itself: a macro rather than the group that it stands in.
Text NameOfUnwritable( const __SafeCFPropertyList& inEntries )
{
    const auto isUnwritable = []( const __SafeCFPropertyList& inValue ) {
        return WriteXMLPropertyList( inValue ).mFault.has_value();
    };
    const XPlistArray* const entries = inEntries.AsArray();
    for ( std::size_t i = 0; entries and i < entries->GetCount(); ++i )
    {
        const __SafeCFPropertyList entry = entries->GetValueAt( i );
        if ( not entry.AsDictionary() or not isUnwritable( entry ) )
            continue;
        CFContainer<XPlistArray> macros;
        (void)entry.AsDictionary()->Get( CFSTR( "Macros" ), macros );
        for ( std::size_t j = 0; macros and j < macros->GetCount(); ++j )
        {
            const __SafeCFPropertyList macro = macros->GetValueAt( j );
            if ( macro.AsDictionary() and isUnwritable( macro ) )
                return NameOf( *macro.AsDictionary() );
        }
        return NameOf( *entry.AsDictionary() );
    }
    return {};
}

// Half a character, or a date that isn't one, is all that XML has no form for; anything that doesn't come back is a
// fault of ours, and better refused than given to others.
MacroExport::Encoded Encode( const __SafeCFPropertyList& inValue )
{
    MacroExport::Encoded encoded;
    XPlistWriteResult written = WriteXMLPropertyList( inValue );
    if ( written.mFault )
    {
        const Text name = NameOfUnwritable( inValue ), fault = TextFromUTF8( *written.mFault );
        encoded.mError = name.empty() ? kvr_localizedFormat( u"ExportUnwritableFormat", fault )
                                      : kvr_localizedFormat( u"ExportUnwritableNamedFormat", name, fault );
        return encoded;
    }
    const XPlistReadResult read = ReadXMLPropertyList( written.mBytes.Span(), kActionsPlistLimits );
    if ( read.mFault or not( read.mValue == inValue ) )
    {
        const Text fault = TextFromUTF8( read.mFault ? read.mFault->Describe() : "it reads as something else" );
        encoded.mError = kvr_localizedFormat( u"ExportUnwritableFormat", fault );
        return encoded;
    }
    encoded.mBytes = std::move( written.mBytes );
    return encoded;
}

std::optional<Text> Write( const std::filesystem::path& inFile, const MacroExport::Encoded& inEncoded )
{
    if ( inEncoded.mError )
        return inEncoded.mError;
    const auto error = XAtomicFile::Write( inFile, inEncoded.mBytes.Span() );
    if ( not error )
        return {};
    return kvr_localizedFormat( u"ExportCouldNotWriteFormat", error->Describe() );
}

constexpr int CountedForm( std::size_t inCount )
{
    return inCount > 1 ? 2 : int( inCount );
}

// The failure's reason isn't in the words that were fixed for the alert: the log has it.
bool Tell( const std::optional<Text>& inError, TextView inKind, std::size_t inCount,
    const std::filesystem::path& inFile, XPlatformWindow* inWindow )
{
    const Text prefix = u"Export" + Text( inKind );
    if ( inError )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "Export to %@ failed: %@", inFile, *inError );
        ErrorAlert::Error( inWindow, prefix + u"FailedHeader", prefix + u"FailedMessage" );
        return false;
    }
    const Text key = kvr_format( u"%@_Success_Description%d", prefix, CountedForm( inCount ) );
    Platform::Current().Alerts().Notify(
        kvr_localized( prefix + u"_Success_Title" ), kvr_localizedFormat( key, inFile.filename() ) );
    return true;
}
} // namespace

CFContainer<XPlistArray> MacroExport::macrosToExportForMacroSet( const std::set<MMacro*>& inMacros )
{
    return EntriesToExport( { inMacros.begin(), inMacros.end() } );
}

CFContainer<XPlistArray> MacroExport::EntriesToExport( const std::vector<MMacroSerializedObject*>& inObjects )
{
    Chosen chosen;
    std::set<const MMacroSmartGroup*, ByUID> smartGroups;
    for ( const MMacroSerializedObject* const object : inObjects )
    {
        if ( const MMacroSmartGroup* const smartGroup = object->GetAsMacroSmartGroup() )
            smartGroups.insert( smartGroup );
        else if ( const MMacroGroup* const group = object->GetAsMacroGroup() )
        {
            auto& macros = chosen[group];
            group->DoForEveryMacro( [&macros]( const MMacro& macro ) { macros.insert( &macro ); } );
        }
        else if ( const MMacro* const macro = object->GetAsMacro(); macro and macro->GetOwningGroup() )
            chosen[macro->GetOwningGroup()].insert( macro );
    }
    return EntriesOf( smartGroups, chosen );
}

MacroExport::Encoded MacroExport::EncodeMacros( const __SafeCFPropertyList& inEntries )
{
    return Encode( inEntries );
}

MacroExport::Encoded MacroExport::EncodeActions( const HActionList& inActions )
{
    return Encode( inActions.CopyActionsToPropertyList() );
}

std::optional<Text> MacroExport::WriteMacros(
    const std::filesystem::path& inFile, const __SafeCFPropertyList& inEntries )
{
    return Write( inFile, EncodeMacros( inEntries ) );
}

std::optional<Text> MacroExport::WriteActions( const std::filesystem::path& inFile, const HActionList& inActions )
{
    return Write( inFile, EncodeActions( inActions ) );
}

std::size_t MacroExport::CountMacros( const __SafeCFPropertyList& inEntries )
{
    std::size_t count = 0;
    const XPlistArray* const entries = inEntries.AsArray();
    for ( std::size_t i = 0; entries and i < entries->GetCount(); ++i )
    {
        const __SafeCFPropertyList entry = entries->GetValueAt( i );
        CFContainer<XPlistArray> macros;
        if ( entry.AsDictionary() and entry.AsDictionary()->Get( CFSTR( "Macros" ), macros ) )
            count += macros->GetCount();
    }
    return count;
}

bool MacroExport::ExportMacros(
    const std::filesystem::path& inFile, const __SafeCFPropertyList& inEntries, XPlatformWindow* inWindow )
{
    return Tell( WriteMacros( inFile, inEntries ), u"Macros", CountMacros( inEntries ), inFile, inWindow );
}

bool MacroExport::ExportActions(
    const std::filesystem::path& inFile, const HActionList& inActions, XPlatformWindow* inWindow )
{
    return Tell( WriteActions( inFile, inActions ), u"Actions", std::size_t( inActions.GetCount() ), inFile, inWindow );
}

Text MacroExport::DefaultActionsFileName()
{
    return kvr_localized( u"ExportActionsDefaultFileName" );
}
