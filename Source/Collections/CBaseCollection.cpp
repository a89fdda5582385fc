#include "Collections/CBaseCollection.h"

#include "Actions/DescriptionText.h"
#include "Actions/HFieldVisitors.h"
#include "Collections/FileCollections.h"
#include "Collections/TextCollections.h"
#include "Collections/ValueCollections.h"
#include "Defines/KVIconRegistry.h"
#include "Macros/MLoadObserver.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <algorithm>
#include <optional>

// To add a type of collection: an enumerator and its name, a row here in its place, a class with its fields,
// and three texts ("cl…_Description", "cl…_LongDescription", and those of its GetDescription).

namespace
{
using Maker = std::unique_ptr<CBaseCollection> ( * )();

template<class Collection>
std::unique_ptr<CBaseCollection> Make()
{
    return std::make_unique<Collection>();
}

struct CollectionTypeRow
{
    CollectionType mType;
    Maker mMake;
};

constexpr CollectionTypeRow kCollectionTypes[] = {
    { CollectionType::kRange, Make<CRangeCollection> },
    { CollectionType::kApplications, Make<CApplicationsCollection> },
    { CollectionType::kFiles, Make<CFilesCollection> },
    { CollectionType::kFinderSelection, Make<CFinderSelectionCollection> },
    { CollectionType::kVolumes, Make<CVolumesCollection> },
    { CollectionType::kLinesIn, Make<CLinesInCollection> },
    { CollectionType::kSubstringsIn, Make<CSubstringsInCollection> },
    { CollectionType::kPastClipboards, Make<CPastClipboardsCollection> },
    { CollectionType::kDictionaries, Make<CDictionariesCollection> },
    { CollectionType::kDictionaryKeys, Make<CDictionaryKeysCollection> },
    { CollectionType::kFoundImages, Make<CFoundImagesCollection> },
    { CollectionType::kVariables, Make<CVariablesCollection> },
    { CollectionType::kJSON, Make<CJSONCollection> },
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

std::optional<CollectionType> TypeNamed( const XText& inName )
{
    const auto found = std::find_if( std::begin( kCollectionTypeNames ), std::end( kCollectionTypeNames ),
        [&]( TextView name ) { return inName.Equals( name ); } );
    if ( found == std::end( kCollectionTypeNames ) )
        return {};
    return CollectionType( found - std::begin( kCollectionTypeNames ) );
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
        observer->DidUpgradeValue( inDictionary, CFSTR( "CollectionType" ),
            kvr_format( u"an older name of the type “%@”", StoredName( older->mType ) ) );
    return older->mType;
}

std::optional<CollectionType> ReadType( const XPlistDictionary& inDictionary )
{
    if ( const auto type = TypeNamed( TextOf( inDictionary, CFSTR( "CollectionType2" ) ) ) )
    {
        if ( MLoadObserver* observer = MLoadObserver::Current() )
            observer->DidReadOlderKey( inDictionary, CFSTR( "CollectionType2" ), CFSTR( "CollectionType" ) );
        return type;
    }
    const XText name = TextOf( inDictionary, CFSTR( "CollectionType" ) );
    const auto type = TypeNamed( name );
    return type ? type : TypeWithOlderName( inDictionary, name );
}
} // namespace

std::unique_ptr<CBaseCollection> CBaseCollection::Create( CollectionType inType )
{
    const bool isType = std::size_t( inType ) < std::size( kCollectionTypes );
    XAssert( isType );
    return isType ? kCollectionTypes[std::size_t( inType )].mMake() : nullptr;
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
    const XPlistDictionary* dictionary = inValue.AsDictionary();
    XThrowIfNotText( dictionary, "dictionary && dictionary->IsCorrectTypeID()" );
    const std::optional<CollectionType> type = ReadType( *dictionary );
    const bool good = type.has_value();
    XThrowIfNot( good );
    return Create( *type, *dictionary );
}

CFContainer<XPlistDictionary> CBaseCollection::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    dictionary.SetText( CFSTR( "CollectionType" ), StoredName( GetCollectionType() ) );
    SaveSubclassToDictionary( dictionary );
    return dictionary.Seal();
}

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

int CBaseCollection::CompareWith( const CBaseCollection& inOther ) const
{
    if ( GetCollectionType() != inOther.GetCollectionType() )
        return GetCollectionType() < inOther.GetCollectionType() ? -1 : 1;
    return CompareWithSame( inOther );
}

int CBaseCollection::CompareWithSame( const CBaseCollection& inOther ) const
{
    return HComparingVisitor::Compare( *this, inOther );
}

void CBaseCollection::UpdateToDefaultValues( bool ) {}

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

XIcon CBaseCollection::GetXIcon() const
{
    return KVIconRegistryIconForActionType( u"For" );
}

void CBaseCollection::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.Add( GetCollectionEditorDescription() );
    ioSearchee.Add( GetCollectionTypeDescription() );
    ioSearchee.Add( GetDescription() );
    // What a description leaves out or cuts off.
    HCollectingVisitor visitor( ioSearchee );
    const_cast<CBaseCollection*>( this )->DescribeFields( visitor ); // which writes to no member
}

Text CBaseCollection::WikiName() const
{
    return kvr_wikiName( GetCollectionTypeDescription() );
}
