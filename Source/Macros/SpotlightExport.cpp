#include "Macros/SpotlightExport.h"

#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Platform/Platform.h"
#include "Utility/Search/StringSearchee.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <array>
#include <md5.h>
#include <optional>

namespace
{
using Digest = std::array<std::uint8_t, MD5_DIGEST_LENGTH>;

constexpr char kTag[] = "ExportToSpotlightIndex";
Digest gLastSpotlightExportMD5{};

std::vector<const MMacroSerializedObject*> EveryObjectByUID()
{
    std::vector<MMacroSerializedObject*> entries;
    std::vector<const MMacroSerializedObject*> objects;
    if ( const MMacroDomain* const domain = MMacroDomain::Get() )
    {
        domain->DoForEveryMacro( [&objects]( MMacroGroup&, const MMacro& macro ) { objects.push_back( &macro ); } );
        domain->GetUnorderedEveryMacroGroupEntry( entries );
    }
    objects.insert( objects.end(), entries.begin(), entries.end() );
    std::sort( objects.begin(), objects.end(),
        []( const auto* a, const auto* b ) { return MMacroSerializedObject::CompareByUID( a, b ) < 0; } );
    return objects;
}

Digest DigestOf( const std::vector<const MMacroSerializedObject*>& inObjects )
{
    MD5_CTX context;
    MD5Init( &context );
    const auto update = [&context]( const std::string& text ) {
        MD5Update( &context, reinterpret_cast<const std::uint8_t*>( text.data() ), text.size() );
    };
    for ( const MMacroSerializedObject* const object : inObjects )
    {
        update( object->GetUID().GetUTF8() );
        update( UTF8FromText( object->GetName() ) );
    }
    Digest digest;
    MD5Final( digest.data(), &context );
    return digest;
}

double SecondsSince( double inStart )
{
    return XClock::Current().MonotonicSeconds() - inStart;
}

void Acknowledge( const SpotlightExport::AcknowledgementHandler& inHandler, const char* inWhich )
{
    if ( not inHandler )
        return;
    XErrorHandler::PrivateMaybeLogFormat( kTag, "Spotlight call acknowledgementHandler %s", inWhich );
    inHandler();
}

// A previous digest lets an export of nothing new end early; without one it always indexes.
void Export( XSearchIndex* inIndex, const std::optional<Digest>& inPreviousDigest,
    const SpotlightExport::AcknowledgementHandler& inHandler )
{
    const double start = XClock::Current().MonotonicSeconds();
    XErrorHandler::PrivateMaybeLogFormat( kTag, "Index All SearchableItems" );
    XSearchIndex& index = inIndex ? *inIndex : Platform::Current().SearchIndex();
    if ( not index.isIndexingAvailable() )
    {
        Acknowledge( inHandler, "A" );
        return;
    }

    const std::vector<const MMacroSerializedObject*> objects = EveryObjectByUID();
    const Digest digest = DigestOf( objects );
    XErrorHandler::PrivateMaybeLogFormat( kTag, "ExportToSpotlightIndex check Time used %f", SecondsSince( start ) );
    if ( inPreviousDigest and not inHandler and *inPreviousDigest == digest )
    {
        XErrorHandler::PrivateMaybeLogFormat(
            kTag, "ExportToSpotlightIndex ignoring reindex, nothing of relevance has changed" );
        return;
    }

    std::vector<XSearchableItem> items;
    items.reserve( objects.size() );
    for ( const MMacroSerializedObject* const object : objects )
        items.push_back( SpotlightExport::SearchableItemForObject( *object ) );
    // What is captured is all that the completions touch: they may come on any thread.
    index.deleteAllSearchableItems(
        [&index, items = std::move( items ), inHandler, start]( const std::optional<Text>& ) mutable {
            index.indexSearchableItems( std::move( items ), [inHandler, start]( const std::optional<Text>& error ) {
                if ( error )
                    XErrorHandler::PrivateMaybeLogFormat(
                        "always", "Spotlight indexSearchableItems add returned error %@", *error );
                XErrorHandler::PrivateMaybeLogFormat(
                    kTag, "Spotlight index finished Time used %f", SecondsSince( start ) );
                Acknowledge( inHandler, "B" );
            } );
        } );
    gLastSpotlightExportMD5 = digest;
    XErrorHandler::PrivateMaybeLogFormat( kTag, "ExportToSpotlightIndex total Time used %f", SecondsSince( start ) );
}
} // namespace

void SpotlightExport::ExportToSpotlightIndex()
{
    Export( nullptr, gLastSpotlightExportMD5, {} );
}

void SpotlightExport::ExportToSpotlightIndex( XSearchIndex& inIndex, AcknowledgementHandler inHandler )
{
    Export( &inIndex, {}, inHandler );
}

void SpotlightExport::ExportToSpotlightIndexWithIdentifiers(
    XSearchIndex& inIndex, std::span<const Text> inIdentifiers, AcknowledgementHandler inHandler )
{
    if ( not inIndex.isIndexingAvailable() )
    {
        Acknowledge( inHandler, "C" );
        return;
    }
    std::vector<XSearchableItem> items;
    std::vector<Text> gone;
    for ( const Text& identifier : inIdentifiers )
    {
        if ( const MMacroSerializedObject* const object = MMacroSerializedObject::FindObjectByUID( identifier ) )
            items.push_back( SearchableItemForObject( *object ) );
        else
            gone.push_back( identifier );
    }
    gLastSpotlightExportMD5 = {}; // the next plain export reindexes
    inIndex.deleteSearchableItemsWithIdentifiers(
        gone, [&inIndex, items = std::move( items ), inHandler]( const std::optional<Text>& deleteError ) mutable {
            if ( deleteError )
                XErrorHandler::PrivateMaybeLogFormat(
                    "always", "Spotlight reindexSearchableItems delete returned error %@", *deleteError );
            inIndex.indexSearchableItems( std::move( items ), [inHandler]( const std::optional<Text>& addError ) {
                if ( addError )
                    XErrorHandler::PrivateMaybeLogFormat(
                        "always", "Spotlight reindexSearchableItems add returned error %@", *addError );
                Acknowledge( inHandler, "B" );
            } );
        } );
}

XSearchableItem SpotlightExport::SearchableItemForObject( const MMacroSerializedObject& inObject )
{
    XSearchableItem item;
    // The types of the two kinds of group stand crosswise; indexes in use hold them so.
    if ( inObject.GetAsMacro() )
    {
        item.mContentType = u"com.tessarine.korvalen.item.macro";
        item.mContentDescription = u"Macro";
    }
    else if ( inObject.GetAsMacroSmartGroup() )
    {
        item.mContentType = u"com.tessarine.korvalen.item.macrogroup";
        item.mContentDescription = u"Smart Group";
    }
    else
    {
        item.mContentType = u"com.tessarine.korvalen.item.smartgroup";
        item.mContentDescription = u"Macro Group";
    }
    item.mTitle = inObject.GetName();
    item.mCreator = u"Korvalen";
    item.mKeywords = { item.mTitle, item.mContentDescription, item.mCreator };
    item.mUniqueIdentifier = inObject.GetUID().GetText();
    item.mDomainIdentifier = u"com.tessarine.korvalen.editor";

    const MMacro* const macro = inObject.GetAsMacro();
    if ( not macro )
        return item;
    if ( const MMacroGroup* const group = macro->GetOwningGroup() )
    {
        item.mContainerDisplayName = item.mContainerTitle = group->GetName();
        item.mContainerIdentifier = group->GetUID().GetText();
    }
    StringSearchee searchee;
    macro->AddMatchStrings( searchee );
    searchee.AddContentCr( item );
    return item;
}
