#include "Macros/MDefaultLibraries.h"

#include "CFMethods/PropertyListCodec.h"
#include "KorvalenResources.h"
#include "Macros/ImportedLibraries.h"
#include "Macros/MMacroDomain.h"
#include "XCAF/XErrorHandler.h"

namespace
{
constexpr MDefaultLibraries::Row kLibraries[] = {
    { u"Clipboard Filters", 90 },
    { u"All Macros Smart Group", 70 },
    { u"Enabled Macros Smart Group", 70 },
    { u"Trigger Macro by Name", 60 },
    { u"Record Quick Macros", 50 },
    { u"Activate Application Launcher", 44 },
    { u"Search the Web", 43 },
    { u"Paste Selection Into Last Application", 43 },
    { u"Activate Application Switcher", 35 },
    { u"Activate Clipboard History Switcher", 35 },
    { u"Activate Named Clipboard Switchers", 35 },
    { u"Activate Window Switcher", 35 },
};
} // namespace

std::span<const MDefaultLibraries::Row> MDefaultLibraries::Rows()
{
    return kLibraries;
}

std::set<Text> MDefaultLibraries::CheckAdditions( std::uint32_t inMacroPreferencesVersion )
{
    std::set<Text> needed;
    for ( const auto& [uid, version] : kLibraries )
    {
        if ( inMacroPreferencesVersion >= version )
            ImportedLibraries::Imported( uid );
        else
            needed.emplace( uid );
    }
    return needed;
}

void MDefaultLibraries::Add( const std::set<Text>& inUIDs, MMacroDomain& ioDomain )
{
    const auto resource = KorvalenLibraryResources();
    XAssertText( not resource.empty(), "resource" );
    for ( const auto& [name, bytes] : resource )
    {
        const auto library =
            ReadPropertyList( { reinterpret_cast<const std::uint8_t*>( bytes.data() ), bytes.size() } ).mValue;
        XText uid;
        if ( not library.AsDictionary() or not library.AsDictionary()->Get( CFSTR( "UID" ), uid ) or
            not inUIDs.contains( uid.GetText() ) )
            continue;
        (void)ioDomain.MergePropertyListFromArray(
            __SafeCFPropertyList( library.AsDictionary()->Find( CFSTR( "Items" ) ) ) );
        ImportedLibraries::Imported( uid.GetText() );
    }
}
