#include "Macros/SpotlightExport.h"

#include "Platform/Platform.h"
#include "Tests/Macros/MacroFixtures.h"

#include <map>

namespace
{
// An index in memory that completes when it is told to.
class FakeIndex final : public XSearchIndex
{
public:
    bool isIndexingAvailable() const override { return mIsAvailable; }
    void deleteAllSearchableItems( Completion inCompletion ) override
    {
        mItems.clear();
        ++mDeletions;
        mPending.push_back( std::move( inCompletion ) );
    }
    void deleteSearchableItemsWithIdentifiers( std::span<const Text> inIdentifiers, Completion inCompletion ) override
    {
        for ( const Text& identifier : inIdentifiers )
        {
            mDeleted.push_back( identifier );
            mItems.erase( identifier );
        }
        mPending.push_back( std::move( inCompletion ) );
    }
    void indexSearchableItems( std::vector<XSearchableItem> inItems, Completion inCompletion ) override
    {
        for ( XSearchableItem& item : inItems )
            mItems[item.mUniqueIdentifier] = std::move( item );
        mPending.push_back( std::move( inCompletion ) );
    }

    void Complete( const std::optional<Text>& inError = {} )
    {
        while ( not mPending.empty() )
        {
            const Completion completion = std::move( mPending.front() );
            mPending.erase( mPending.begin() );
            completion( inError );
        }
    }
    [[nodiscard]] std::vector<Text> Identifiers() const
    {
        std::vector<Text> identifiers;
        for ( const auto& [identifier, item] : mItems )
            identifiers.push_back( identifier );
        return identifiers;
    }

    bool mIsAvailable = true;
    std::map<Text, XSearchableItem> mItems;
    std::vector<Text> mDeleted;
    std::vector<Completion> mPending;
    int mDeletions = 0;
};

struct Spotlight : DomainWorld
{
    Spotlight()
    {
        mPlatform.SetSearchIndex( mIndex );
        mDomain.LoadFromPropertyList( FileWith( { SmartGroupWith( u"S", {}, { { "Name", Str( u"Smart" ) } } ),
            GroupWith( u"G", { MacroWith( u"M", { { "Name", Str( u"Macro 1" ) }, { "IsActive", Bool( false ) } } ) },
                { { "Name", Str( u"Group 1" ) } } ) } ) );
        // Forget what an earlier test exported.
        SpotlightExport::ExportToSpotlightIndexWithIdentifiers( mIndex, {}, {} );
        mIndex.Complete();
    }
    int Deletions() const { return mIndex.mDeletions; }

    FakeIndex mIndex;
    Platform mPlatform;
    Platform::Substitute mPlatformInUse{ mPlatform };
    int mAcknowledged = 0;
    SpotlightExport::AcknowledgementHandler mHandler = [this] { ++mAcknowledged; };
};
} // namespace

TEST_F( Spotlight, EveryObjectIsExportedAndTheTypesOfGroupsStandCrosswise )
{
    SpotlightExport::ExportToSpotlightIndex();
    mIndex.Complete();
    const struct
    {
        const char16_t *mUID, *mType, *mDescription, *mTitle;
    } kCases[] = {
        { u"M", u"com.tessarine.korvalen.item.macro", u"Macro", u"Macro 1" },
        { u"S", u"com.tessarine.korvalen.item.macrogroup", u"Smart Group", u"Smart" },
        { u"G", u"com.tessarine.korvalen.item.smartgroup", u"Macro Group", u"Group 1" },
    };
    EXPECT_EQ( mIndex.mItems.size(), 3u );
    for ( const auto& [uid, type, description, title] : kCases )
    {
        const XSearchableItem& item = mIndex.mItems[uid];
        EXPECT_EQ( item.mContentType, type );
        EXPECT_EQ( item.mContentDescription, description );
        EXPECT_EQ( item.mTitle, title );
        EXPECT_EQ( item.mCreator, u"Korvalen" );
        EXPECT_THAT( item.mKeywords, testing::ElementsAre( title, description, u"Korvalen" ) );
        EXPECT_EQ( item.mDomainIdentifier, u"com.tessarine.korvalen.editor" );
    }
    const XSearchableItem& macro = mIndex.mItems[u"M"];
    EXPECT_EQ( macro.mContainerDisplayName, u"Group 1" );
    EXPECT_EQ( macro.mContainerTitle, u"Group 1" );
    EXPECT_EQ( macro.mContainerIdentifier, u"G" );
    EXPECT_EQ( macro.mContentCreationDate, 100 );
    EXPECT_TRUE( mIndex.mItems[u"G"].mContainerTitle.empty() );
}

TEST_F( Spotlight, OnlyUIDsAndNamesCauseAnotherExport )
{
    SpotlightExport::ExportToSpotlightIndex();
    SpotlightExport::ExportToSpotlightIndex();
    EXPECT_EQ( Deletions(), 1 );
    EXPECT_EQ( mLog.CountContaining( "ignoring reindex, nothing of relevance has changed" ), 1u );
    FoundMacro( u"M" ).SetIsActive( true );
    FoundMacro( u"M" ).SetModificationTime( 999 );
    SpotlightExport::ExportToSpotlightIndex();
    EXPECT_EQ( Deletions(), 1 );
    FoundMacro( u"M" ).SetName( u"Macro 2" );
    SpotlightExport::ExportToSpotlightIndex();
    EXPECT_EQ( Deletions(), 2 );
    FoundGroup( u"G" ).SetUID( u"G2" );
    SpotlightExport::ExportToSpotlightIndex();
    EXPECT_EQ( Deletions(), 3 );
    mDomain.DeleteMacroGroup( &FoundGroup( u"G2" ) );
    SpotlightExport::ExportToSpotlightIndex();
    EXPECT_EQ( Deletions(), 4 );
}

TEST_F( Spotlight, AnAskedForExportAlwaysIndexesAndAcknowledgesInTheEnd )
{
    for ( int round = 1; round <= 2; ++round )
    {
        SpotlightExport::ExportToSpotlightIndex( mIndex, mHandler );
        EXPECT_EQ( Deletions(), round );
        EXPECT_EQ( mAcknowledged, round - 1 );
        mIndex.Complete();
        EXPECT_EQ( mAcknowledged, round );
    }
    EXPECT_EQ( mLog.CountContaining( "Spotlight call acknowledgementHandler B" ), 2u );
    mIndex.mIsAvailable = false;
    SpotlightExport::ExportToSpotlightIndex( mIndex, mHandler );
    EXPECT_EQ( mAcknowledged, 3 );
    SpotlightExport::ExportToSpotlightIndexWithIdentifiers( mIndex, {}, mHandler );
    EXPECT_EQ( mAcknowledged, 4 );
    EXPECT_EQ( mLog.CountContaining( "Spotlight call acknowledgementHandler C" ), 1u );
    EXPECT_EQ( Deletions(), 2 );
}

TEST_F( Spotlight, IdentifiersThatNameNothingAreDeletedAndTheNextExportIndexes )
{
    SpotlightExport::ExportToSpotlightIndex();
    mIndex.Complete();
    mIndex.mItems.clear();
    mIndex.mItems[u"gone"] = {};
    const Text kIdentifiers[] = { u"gone", u"M", u"" };
    SpotlightExport::ExportToSpotlightIndexWithIdentifiers( mIndex, kIdentifiers, mHandler );
    EXPECT_EQ( mAcknowledged, 0 );
    mIndex.Complete();
    EXPECT_EQ( mAcknowledged, 1 );
    EXPECT_THAT( mIndex.Identifiers(), testing::ElementsAre( u"M" ) );
    EXPECT_THAT( mIndex.mDeleted, testing::ElementsAre( u"gone", u"" ) );
    SpotlightExport::ExportToSpotlightIndex();
    EXPECT_EQ( Deletions(), 2 );
}

TEST_F( Spotlight, ErrorsAreLogged )
{
    SpotlightExport::ExportToSpotlightIndex( mIndex, mHandler );
    mIndex.Complete( u"full" );
    EXPECT_EQ( mLog.CountContaining( "Spotlight indexSearchableItems add returned error full" ), 1u );
    SpotlightExport::ExportToSpotlightIndexWithIdentifiers( mIndex, {}, mHandler );
    mIndex.Complete( u"lost" );
    EXPECT_EQ( mLog.CountContaining( "Spotlight reindexSearchableItems delete returned error lost" ), 1u );
    EXPECT_EQ( mLog.CountContaining( "Spotlight reindexSearchableItems add returned error lost" ), 1u );
    EXPECT_EQ( mAcknowledged, 2 );
}
