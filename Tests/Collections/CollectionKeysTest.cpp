// All types of collection against their catalogue; what every family keeps stands in CatalogueChecks.cpp.
#include "Collections/CBaseCollection.h"
#include "Collections/CollectionType.h"
#include "Tests/Actions/ActionTestSupport.h"
#include "Tests/Support/CatalogueChecks.h"

namespace
{
class CollectionObject final : public CatalogueObject
{
public:
    explicit CollectionObject( std::unique_ptr<CBaseCollection> inCollection )
        : mCollection( std::move( inCollection ) )
    {}

    __SafeCFPropertyList Save() const override { return mCollection->CopyToPropertyList(); }
    std::unique_ptr<CatalogueObject> Clone() const override
    {
        return std::make_unique<CollectionObject>( mCollection->Clone() );
    }
    int Compare( const CatalogueObject& inOther ) const override
    {
        return mCollection->CompareWith( *static_cast<const CollectionObject&>( inOther ).mCollection );
    }
    Text TypeTitle() const override { return mCollection->GetCollectionTypeDescription(); }
    Text Description() const override { return mCollection->GetDescription(); }
    void AddMatchStrings( StringSearchee& ioSearchee ) const override { mCollection->AddMatchStrings( ioSearchee ); }
    std::vector<Text> WordsToFind() const override
    {
        return { TypeTitle(), mCollection->GetCollectionEditorDescription() };
    }

private:
    std::unique_ptr<CBaseCollection> mCollection;
};

std::vector<std::string> CollectionTypeKeys()
{
    std::vector<std::string> keys;
    for ( const TextView name : kCollectionTypeNames )
        keys.push_back( UTF8FromText( name ) );
    return keys;
}

class CollectionFamily final : public CatalogueFamily
{
public:
    CollectionFamily() : CatalogueFamily( "CollectionType", "Collections/CollectionCatalogue.txt", CollectionTypeKeys )
    {}

    std::unique_ptr<CatalogueObject> New( std::size_t inType ) const override
    {
        return std::make_unique<CollectionObject>( CBaseCollection::Create( CollectionType( inType ) ) );
    }
    std::unique_ptr<CatalogueObject> Read( const __SafeCFPropertyList& inValue ) const override
    {
        return std::make_unique<CollectionObject>( CBaseCollection::CreateFromPropertyList( inValue ) );
    }
};
const CollectionFamily gCollections;

std::string TypeReadFrom( const __SafeCFPropertyList& inDictionary )
{
    const auto collection = CBaseCollection::CreateFromPropertyList( inDictionary );
    return UTF8FromText( kCollectionTypeNames[std::size_t( collection->GetCollectionType() )] );
}
} // namespace

INSTANTIATE_TEST_SUITE_P( Collections, TypeCatalogueTest, testing::Values( &gCollections ) );

TEST( CollectionCatalogue, OlderNamesAndTheSecondKeyTellTheType )
{
    for ( const CatalogueType& type : gCollections.Catalogue().Types() )
    {
        const auto name = Str( TextFromUTF8( type.mKey ) );
        for ( const std::string& older : type.mOlderNames )
        {
            const auto read = Dict( { { "CollectionType", Str( TextFromUTF8( older ) ) } } );
            EXPECT_EQ( TypeReadFrom( read ), type.mKey ) << older;
            EXPECT_EQ(
                At( CBaseCollection::CreateFromPropertyList( read )->CopyToPropertyList(), "CollectionType" ), name );
        }
        for ( const auto& beside : { Str( u"Volumes" ), Str( u"" ), Str( u"No Such Type" ), Bool( true ) } )
        {
            const auto read = Dict( { { "CollectionType", beside }, { "CollectionType2", name } } );
            EXPECT_EQ( TypeReadFrom( read ), type.mKey );
            EXPECT_FALSE(
                At( CBaseCollection::CreateFromPropertyList( read )->CopyToPropertyList(), "CollectionType2" ) );
        }
        EXPECT_EQ(
            TypeReadFrom( Dict( { { "CollectionType", name }, { "CollectionType2", Str( u"" ) } } ) ), type.mKey );
    }
}
