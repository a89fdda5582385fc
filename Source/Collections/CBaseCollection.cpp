#include "Collections/CBaseCollection.h"

#include "Actions/DescriptionText.h"
#include "Actions/HFieldVisitors.h"
#include "Actions/WikiHelpData.h"
#include "Collections/FileCollections.h"
#include "Collections/TextCollections.h"
#include "Collections/ValueCollections.h"
#include "Defines/KVIconRegistry.h"
#include "Macros/MLoadObserver.h"
#include "Macros/StoredNames.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XException.h"

#include <algorithm>
#include <optional>

// To add a type of collection: an enumerator and its key in CollectionType.h, a row here in its place, a class with its
// fields, its texts ("cl…_Description", "cl…_LongDescription", and those of its GetDescription), and its lines in
// Tests/Collections/CollectionCatalogue.txt.

namespace
{
template<class Collection>
std::unique_ptr<CBaseCollection> Make()
{
    return std::make_unique<Collection>();
}

struct CollectionTypeRow
{
    CollectionType mType;
    TextView mIconName; // a built-in icon
    std::unique_ptr<CBaseCollection> ( *mMake )();
};

constexpr CollectionTypeRow kCollectionTypes[] = {
    { CollectionType::kRange, u"Variable", Make<CRangeCollection> },
    { CollectionType::kApplications, u"Application", Make<CApplicationsCollection> },
    { CollectionType::kFiles, u"Folder", Make<CFilesCollection> },
    { CollectionType::kFinderSelection, u"Folder", Make<CFinderSelectionCollection> },
    { CollectionType::kVolumes, u"Folder", Make<CVolumesCollection> },
    { CollectionType::kLinesIn, u"PlainText", Make<CLinesInCollection> },
    { CollectionType::kSubstringsIn, u"PlainText", Make<CSubstringsInCollection> },
    { CollectionType::kPastClipboards, u"Clipboard", Make<CPastClipboardsCollection> },
    { CollectionType::kDictionaries, u"Dictionary", Make<CDictionariesCollection> },
    { CollectionType::kDictionaryKeys, u"Dictionary", Make<CDictionaryKeysCollection> },
    { CollectionType::kFoundImages, u"Screen", Make<CFoundImagesCollection> },
    { CollectionType::kVariables, u"Variable", Make<CVariablesCollection> },
    { CollectionType::kJSON, u"PlainText", Make<CJSONCollection> },
};
static_assert( std::size( kCollectionTypes ) == std::size( kCollectionTypeNames ) );

constexpr bool InEnumeratorOrder( std::span<const CollectionTypeRow> inRows )
{
    for ( std::size_t i = 0; i < inRows.size(); ++i )
    {
        if ( std::size_t( inRows[i].mType ) != i )
            return false;
    }
    return true;
}
static_assert( InEnumeratorOrder( kCollectionTypes ), "one row for each CollectionType, in its order" );

// What the type key held before the source of a text was a field.
struct OlderName
{
    TextView mName;
    CollectionType mType;
};
constexpr OlderName kOlderNames[] = {
    { u"", CollectionType::kPastClipboards },
    { u"LinesInClipboard", CollectionType::kLinesIn },
    { u"LinesInVariable", CollectionType::kLinesIn },
    { u"LinesInFile", CollectionType::kLinesIn },
};

const CollectionTypeRow* RowOf( CollectionType inType )
{
    return std::size_t( inType ) < std::size( kCollectionTypes ) ? &kCollectionTypes[std::size_t( inType )] : nullptr;
}

XText TextOf( const XPlistDictionary& inDictionary, const XKey& inKey )
{
    XText text;
    static_cast<void>( inDictionary.Get( inKey, text ) );
    return text;
}

std::optional<CollectionType> TypeWithOlderName( const XPlistDictionary& inDictionary, const XText& inName )
{
    const auto older = std::find_if( std::begin( kOlderNames ), std::end( kOlderNames ),
        [&]( const OlderName& row ) { return inName.Equals( row.mName ); } );
    if ( older == std::end( kOlderNames ) )
        return {};
    if ( MLoadObserver* observer = MLoadObserver::Current() )
        observer->DidUpgradeType( inDictionary, inName.GetText(), StoredName( older->mType ) );
    return older->mType;
}

std::optional<CollectionType> ReadType( const XPlistDictionary& inDictionary )
{
    if ( const auto type =
             IndexOfStoredName( TextOf( inDictionary, CFSTR( "CollectionType2" ) ), kCollectionTypeNames ) )
    {
        if ( MLoadObserver* observer = MLoadObserver::Current() )
            observer->DidReadOlderKey( inDictionary, CFSTR( "CollectionType2" ), CFSTR( "CollectionType" ) );
        return CollectionType( *type );
    }
    const XText name = TextOf( inDictionary, CFSTR( "CollectionType" ) );
    if ( const auto type = IndexOfStoredName( name, kCollectionTypeNames ) )
        return CollectionType( *type );
    return TypeWithOlderName( inDictionary, name );
}
} // namespace

// Making

std::unique_ptr<CBaseCollection> CBaseCollection::Create( CollectionType inType )
{
    const CollectionTypeRow* row = RowOf( inType );
    return row ? row->mMake() : nullptr;
}

std::unique_ptr<CBaseCollection> CBaseCollection::Create( CollectionType inType, const XPlistDictionary& inDictionary )
{
    auto collection = Create( inType );
    if ( collection )
        collection->LoadSubclassFromDictionary( inDictionary );
    return collection;
}

std::unique_ptr<CBaseCollection> CBaseCollection::CreateFromPropertyList( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    const std::optional<CollectionType> good = ReadType( *dictionary );
    XThrowIfNot( good );
    return Create( *good, *dictionary );
}

CFContainer<XPlistDictionary> CBaseCollection::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    dictionary.SetText( CFSTR( "CollectionType" ), StoredName( GetCollectionType() ) );
    SaveSubclassToDictionary( dictionary );
    return dictionary.Seal();
}

int CBaseCollection::CompareWith( const CBaseCollection& inOther ) const
{
    const CollectionType type = GetCollectionType(), otherType = inOther.GetCollectionType();
    if ( type != otherType )
        return type < otherType ? -1 : 1;
    return CompareWithSame( inOther );
}

// By the described fields

void CBaseCollection::DescribeFields( HFieldVisitor& ) {}

void CBaseCollection::SaveSubclassToDictionary( XMutableDictionary& ioDictionary ) const
{
    HSavingVisitor visitor( ioDictionary );
    const_cast<CBaseCollection*>( this )->DescribeFields( visitor ); // a saving visitor writes to no member
}

void CBaseCollection::LoadSubclassFromDictionary( const XPlistDictionary& inDictionary )
{
    HReadingVisitor visitor( inDictionary );
    DescribeFields( visitor );
}

int CBaseCollection::CompareWithSame( const CBaseCollection& inOther ) const
{
    return HComparingVisitor::Compare( *this, inOther );
}

void CBaseCollection::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.Add( GetCollectionEditorDescription() );
    ioSearchee.Add( GetCollectionTypeDescription() );
    ioSearchee.Add( GetDescription() );
    // What a description leaves out or cuts off.
    HCollectingVisitor visitor( ioSearchee );
    const_cast<CBaseCollection*>( this )->DescribeFields( visitor ); // nor does this one
}

// By the type

Text CBaseCollection::GetCollectionEditorDescription() const
{
    return kvr_localized( kvr_format( "cl%@_LongDescription", StoredName( GetCollectionType() ) ) );
}

Text CBaseCollection::GetCollectionTypeDescription() const
{
    return kvr_localized( kvr_format( "cl%@_Description", StoredName( GetCollectionType() ) ) );
}

Text CBaseCollection::GetDescription() const
{
    return GetCollectionEditorDescription();
}

Text CBaseCollection::WikiName() const
{
    return kvr_wikiName( GetCollectionTypeDescription() );
}

XIcon CBaseCollection::GetXIcon() const
{
    const CollectionTypeRow* row = RowOf( GetCollectionType() );
    return XIcon( row ? row->mIconName : TextView(), KVIconRegistry::kFolder );
}

bool CBaseCollection::WriteWikiHelpData( const std::filesystem::path& inFolder )
{
    std::vector<WikiHelpLine> lines;
    for ( const CollectionTypeRow& row : kCollectionTypes )
    {
        const auto collection = row.mMake();
        lines.push_back( { collection->GetCollectionTypeDescription(), collection->WikiName(),
            collection->GetCollectionTypeDescription(), collection->GetCollectionEditorDescription(),
            collection->GetDescription() } );
    }
    return kvr_writeWikiHelpData( inFolder / "Collections.txt", std::move( lines ) );
}
