// All kinds of trigger against their catalogue; what every family keeps stands in CatalogueChecks.cpp.
#include "Tests/Actions/ActionTestSupport.h"
#include "Tests/Support/CatalogueChecks.h"
#include "Triggers/TBaseTrigger.h"
#include "Triggers/TTriggerFactory.h"

namespace
{
class TriggerObject final : public CatalogueObject
{
public:
    explicit TriggerObject( std::unique_ptr<TBaseTrigger> inTrigger ) : mTrigger( std::move( inTrigger ) ) {}

    __SafeCFPropertyList Save() const override { return mTrigger->CopyToPropertyList(); }
    std::unique_ptr<CatalogueObject> Clone() const override
    {
        return std::make_unique<TriggerObject>( mTrigger->Clone() );
    }
    int Compare( const CatalogueObject& inOther ) const override
    {
        return mTrigger->CompareWith( *static_cast<const TriggerObject&>( inOther ).mTrigger );
    }
    Text TypeTitle() const override { return mTrigger->GetTriggerTypeDescription(); }
    Text Description() const override { return mTrigger->GetDescription(); }
    void AddMatchStrings( StringSearchee& ioSearchee ) const override { mTrigger->AddMatchStrings( ioSearchee ); }
    std::vector<Text> WordsToFind() const override
    {
        return { TypeTitle(), Description(), mTrigger->GetShortDescription() };
    }
    bool IsUseless() const override { return mTrigger->TriggerIsUseless(); }

private:
    std::unique_ptr<TBaseTrigger> mTrigger;
};

std::vector<std::string> TriggerTypeKeys()
{
    return { std::begin( kTriggerTypeNames ), std::end( kTriggerTypeNames ) };
}

class TriggerFamily final : public CatalogueFamily
{
public:
    TriggerFamily() : CatalogueFamily( "MacroTriggerType", "Triggers/TriggerCatalogue.txt", TriggerTypeKeys ) {}

    std::unique_ptr<CatalogueObject> New( std::size_t inType ) const override
    {
        return std::make_unique<TriggerObject>(
            TTriggerFactory::GetTriggerFactory( TriggerType( inType ) ).CreateTrigger() );
    }
    std::unique_ptr<CatalogueObject> Read( const __SafeCFPropertyList& inValue ) const override
    {
        return std::make_unique<TriggerObject>( TBaseTrigger::CreateFromPropertyList( inValue ) );
    }
};
const TriggerFamily gTriggers;
} // namespace

INSTANTIATE_TEST_SUITE_P( Triggers, TypeCatalogueTest, testing::Values( &gTriggers ) );

TEST( TriggerCatalogue, OlderNamesAreReadAndNeverWritten )
{
    for ( const CatalogueType& type : gTriggers.Catalogue().Types() )
    {
        for ( const std::string& older : type.mOlderNames )
        {
            const auto trigger = TBaseTrigger::CreateFromPropertyList(
                Dict( { { "MacroTriggerType", Str( TextFromUTF8( older ) ) } } ) );
            EXPECT_EQ( At( trigger->CopyToPropertyList(), "MacroTriggerType" ), Str( TextFromUTF8( type.mKey ) ) );
        }
    }
}
