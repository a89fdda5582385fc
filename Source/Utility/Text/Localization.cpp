#include "Utility/Text/Localization.h"

#include "CFMethods/PropertyListCodec.h"
#include "KorvalenResources.h"
#include "XCAF/XErrorHandler.h"

#include <functional>
#include <mutex>
#include <unordered_map>
#include <unordered_set>

namespace
{
struct TextHash
{
    using is_transparent = void;
    std::size_t operator()( TextView inText ) const { return std::hash<TextView>()( inText ); }
};

using TextTable = std::unordered_map<Text, Text, TextHash, std::equal_to<>>;

TextTable ReadTable()
{
    const std::string_view resource = KorvalenLocalizableResource();
    const XPlistReadResult read =
        ReadXMLPropertyList( { reinterpret_cast<const std::uint8_t*>( resource.data() ), resource.size() } );
    TextTable table;
    const XPlistDictionary* dictionary = read.mValue.AsDictionary();
    XAssertText( dictionary, "Localizable.plist is a dictionary" );
    if ( not dictionary )
        return table;
    for ( const auto& [key, value] : dictionary->GetEntries() )
    {
        if ( const XPlistString* text = __SafeCFPropertyList( value ).AsString() )
            table.emplace( key->GetText(), text->GetText() );
    }
    return table;
}

const TextTable& Table()
{
    static const TextTable gTable = ReadTable();
    return gTable;
}

// Callers hold references to what they got, so that a missing key needs a home for good.
const Text& MissingText( TextView inKey )
{
    static std::mutex gMutex;
    static std::unordered_set<Text, TextHash, std::equal_to<>> gMissing;

    const Text* text = nullptr;
    bool isNew = false;
    {
        const std::lock_guard lock( gMutex );
        const auto [position, inserted] = gMissing.emplace( inKey );
        text = &*position;
        isNew = inserted;
    }
    // Outside of the lock: what logs may ask for a text itself.
    if ( isNew )
        XErrorHandler::PrivateMaybeLogFormat( "always", "No localized text for the key %@", inKey );
    return *text;
}
} // namespace

const Text& kvr_localized( TextView inKey )
{
    const auto found = Table().find( inKey );
    return found != Table().end() ? found->second : MissingText( inKey );
}

bool kvr_hasLocalized( TextView inKey )
{
    return Table().contains( inKey );
}
