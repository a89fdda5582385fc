#include "Utility/Search/TagSet.h"

#include "Platform/FileFacts.h"
#include "Platform/Platform.h"

#include <gtest/gtest.h>
#include <map>

namespace
{
class TaggedFiles final : public XDesktopFileFacts
{
public:
    bool TrashFile( const std::filesystem::path& ) override { return false; }
    std::optional<Text> GetFileKind( const std::filesystem::path& ) const override { return {}; }
    std::optional<Text> GetDisplayName( const std::filesystem::path& ) const override { return {}; }
    std::optional<Text> GetBundleName( const std::filesystem::path& ) const override { return {}; }
    std::optional<Text> GetType( const std::filesystem::path& ) const override { return {}; }
    bool TypeConformsTo( TextView, TextView ) const override { return false; }
    std::vector<Text> GetTags( const std::filesystem::path& inFile ) const override
    {
        const auto found = mTags.find( inFile );
        return found == mTags.end() ? std::vector<Text>() : found->second;
    }
    bool SetTags( const std::filesystem::path& inFile, const std::vector<Text>& inTags ) override
    {
        mTags[inFile] = inTags;
        return true;
    }

    std::map<std::filesystem::path, std::vector<Text>> mTags;
};
} // namespace

TEST( TagSet, ATagIsTheSameInAnyCaseAndKeepsItsOwn )
{
    const TagName tag( u"ÄB c" );
    EXPECT_EQ( tag.visibleName(), u"ÄB c" );
    EXPECT_EQ( tag.comparableName(), u"äb c" );
    EXPECT_EQ( tag, TagName( u"äB C" ) );
    EXPECT_EQ( tag.description(), u"Tag Name ÄB c (äb c)" );
}

TEST( TagSet, TextsAreSplitAtCommasAndJoinedInOrder )
{
    constexpr struct
    {
        const char16_t *mText, *mJoined;
    } kCases[] = { { u"", u"" }, { u" , ,", u"" }, { u"red,Blue", u"Blue,red" }, { u"b, B ,a a", u"a a,b" } };
    for ( const auto& [text, joined] : kCases )
        EXPECT_EQ( TagSet::tagsForString( text ).stringForTags(), joined ) << UTF8FromText( text );
}

TEST( TagSet, AFileGetsLosesAndTogglesTags )
{
    TaggedFiles files;
    Platform platform;
    platform.SetFileFacts( files );
    const Platform::Substitute inUse( platform );
    const auto tags = [] { return UTF8FromText( TagSet::tagsForFile( "f" ).stringForTags() ); };
    EXPECT_TRUE( TagSet::tagsForString( u"Red,green" ).saveTagsForFile( "f" ) );
    EXPECT_EQ( tags(), "green,Red" );
    EXPECT_TRUE( TagSet::tagsForString( u"red,blue" ).addTagsForFile( "f" ) );
    EXPECT_EQ( tags(), "blue,green,Red" );
    EXPECT_TRUE( TagSet::tagsForString( u"GREEN,absent" ).removeTagsForFile( "f" ) );
    EXPECT_EQ( tags(), "blue,Red" );
    EXPECT_TRUE( TagSet::tagsForString( u"RED,new" ).toggleTagsForFile( "f" ) );
    EXPECT_EQ( tags(), "blue,new" );
}

TEST( TagSet, WithoutAPlatformNothingIsTaggedAndThatIsTold )
{
    EXPECT_EQ( TagSet::tagsForFile( "f" ).GetCount(), 0u );
    EXPECT_FALSE( TagSet::tagsForString( u"a" ).addTagsForFile( "f" ) );
}
