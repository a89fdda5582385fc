#include "Utility/Search/TagSet.h"

#include "Platform/FileFacts.h"
#include "Platform/Platform.h"
#include "Utility/Text/Format.h"
#include "Utility/Text/StringHelpers.h"
#include "Utility/Text/TextCompare.h"

#include <algorithm>

TagName::TagName( TextView inName ) : mVisibleName( inName ), mComparableName( inName )
{
    TextRange updated;
    kvr_lowercaseRange( mComparableName, TextRange{ 0, mComparableName.size() }, updated );
}

Text TagName::description() const
{
    return kvr_format( u"Tag Name %@ (%@)", mVisibleName, mComparableName );
}

TagSet TagSet::tagsForString( TextView inText )
{
    TagSet tags;
    for ( std::size_t at = 0; at <= inText.size(); )
    {
        const std::size_t comma = std::min( inText.find( u',', at ), inText.size() );
        const TextView name = kvr_viewByTrimmingWhitespace( inText.substr( at, comma - at ) );
        if ( not name.empty() )
            tags.Add( TagName( name ) );
        at = comma + 1;
    }
    return tags;
}

Text TagSet::stringForTags() const
{
    Text text;
    for ( const TagName& tag : GetTags() )
        text += ( text.empty() ? u"" : u"," ) + tag.visibleName();
    return text;
}

std::vector<TagName> TagSet::GetTags() const
{
    std::vector<TagName> tags( mTags.begin(), mTags.end() );
    std::sort( tags.begin(), tags.end(), []( const TagName& a, const TagName& b ) {
        const int order = caseInsensitiveCompare( a.visibleName(), b.visibleName() );
        return order ? order < 0 : a.comparableName() < b.comparableName();
    } );
    return tags;
}

TagSet TagSet::tagsForFile( const std::filesystem::path& inFile )
{
    TagSet tags;
    for ( const Text& name : Platform::Current().FileFacts().GetTags( inFile ) )
        tags.Add( TagName( name ) );
    return tags;
}

bool TagSet::saveTagsForFile( const std::filesystem::path& inFile ) const
{
    std::vector<Text> names;
    for ( const TagName& tag : GetTags() )
        names.push_back( tag.visibleName() );
    return Platform::Current().FileFacts().SetTags( inFile, names );
}

bool TagSet::addTagsForFile( const std::filesystem::path& inFile ) const
{
    TagSet tags = tagsForFile( inFile );
    for ( const TagName& tag : mTags )
        tags.Add( tag );
    return tags.saveTagsForFile( inFile );
}

bool TagSet::removeTagsForFile( const std::filesystem::path& inFile ) const
{
    TagSet tags = tagsForFile( inFile );
    for ( const TagName& tag : mTags )
        tags.Remove( tag );
    return tags.saveTagsForFile( inFile );
}

bool TagSet::toggleTagsForFile( const std::filesystem::path& inFile ) const
{
    TagSet tags = tagsForFile( inFile );
    for ( const TagName& tag : mTags )
    {
        if ( tags.Contains( tag ) )
            tags.Remove( tag );
        else
            tags.Add( tag );
    }
    return tags.saveTagsForFile( inFile );
}
