// All types of condition against their catalogue; what every family keeps stands in CatalogueChecks.cpp.
#include "Conditions/CBaseCondition.h"
#include "Conditions/ConditionType.h"
#include "Tests/Support/CatalogueChecks.h"

namespace
{
class ConditionObject final : public CatalogueObject
{
public:
    explicit ConditionObject( std::unique_ptr<CBaseCondition> inCondition ) : mCondition( std::move( inCondition ) ) {}

    __SafeCFPropertyList Save() const override { return mCondition->CopyToPropertyList(); }
    std::unique_ptr<CatalogueObject> Clone() const override
    {
        return std::make_unique<ConditionObject>( mCondition->Clone() );
    }
    int Compare( const CatalogueObject& inOther ) const override
    {
        return mCondition->CompareWith( *static_cast<const ConditionObject&>( inOther ).mCondition );
    }
    Text TypeTitle() const override { return mCondition->GetConditionTypeDescription(); }
    Text Description() const override { return mCondition->GetDescription(); }
    void AddMatchStrings( StringSearchee& ioSearchee ) const override { mCondition->AddMatchStrings( ioSearchee ); }

private:
    std::unique_ptr<CBaseCondition> mCondition;
};

std::vector<std::string> ConditionTypeKeys()
{
    std::vector<std::string> keys;
    for ( const TextView name : kConditionTypeNames )
        keys.push_back( UTF8FromText( name ) );
    return keys;
}

class ConditionFamily final : public CatalogueFamily
{
public:
    ConditionFamily() : CatalogueFamily( "ConditionType", "Conditions/ConditionCatalogue.txt", ConditionTypeKeys ) {}

    std::unique_ptr<CatalogueObject> New( std::size_t inType ) const override
    {
        return std::make_unique<ConditionObject>( CBaseCondition::Create( ConditionType( inType ) ) );
    }
    std::unique_ptr<CatalogueObject> Read( const __SafeCFPropertyList& inValue ) const override
    {
        return std::make_unique<ConditionObject>( CBaseCondition::CreateFromPropertyList( inValue ) );
    }
};
const ConditionFamily gConditions;
} // namespace

INSTANTIATE_TEST_SUITE_P( Conditions, TypeCatalogueTest, testing::Values( &gConditions ) );
