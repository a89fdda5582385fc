// What only some types of collection do, and what each says of itself; keys and defaults are the catalogue's.
#include "Collections/CBaseCollection.h"
#include "Tests/Actions/ActionTestSupport.h"
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/XIcon.h"

#include <set>
#include <sstream>

namespace
{
__SafeCFPropertyList Number( std::int64_t inValue )
{
    return __SafeCFPropertyList::Integer( inValue );
}

__SafeCFPropertyList New( CollectionType inType )
{
    return CBaseCollection::Create( inType )->CopyToPropertyList();
}

__SafeCFPropertyList Read( const __SafeCFPropertyList& inValue )
{
    return CBaseCollection::CreateFromPropertyList( inValue )->CopyToPropertyList();
}

std::string Failure( const __SafeCFPropertyList& inValue )
{
    try
    {
        static_cast<void>( CBaseCollection::CreateFromPropertyList( inValue ) );
    }
    catch ( const XException& error )
    {
        return UTF8FromText( error.GetMessage() );
    }
    return {};
}
} // namespace

TEST( CollectionTypes, ANumberThatIsNoTypeMakesNone )
{
    EXPECT_EQ( CBaseCollection::Create( CollectionType( 13 ) ), nullptr );
    EXPECT_EQ( CBaseCollection::Create( CollectionType( -1 ), *Dict( {} ).AsDictionary() ), nullptr );
}

TEST( CollectionTypes, AreOrderedByNumberFirst )
{
    for ( std::size_t i = 0; i < std::size( kCollectionTypeNames ); ++i )
    {
        for ( std::size_t j = 0; j < std::size( kCollectionTypeNames ); ++j )
        {
            const int order = CBaseCollection::Create( CollectionType( i ) )
                                  ->CompareWith( *CBaseCollection::Create( CollectionType( j ) ) );
            EXPECT_EQ( order, i < j ? -1 : int( i > j ) );
        }
    }
}

TEST( CollectionTypes, WhatBelongsToTheChosenSourceIsKeptAndNothingElse )
{
    const auto lines =
        With( With( New( CollectionType::kLinesIn ), "Source", Str( u"Variable" ) ), "Variable", Str( u"List" ) );
    EXPECT_EQ( Read( lines ), lines );
    EXPECT_EQ( Read( With( lines, "Text", Str( u"left from before" ) ) ), lines );
    const auto image = With(
        With( New( CollectionType::kFoundImages ), "ImageSource", Str( u"File" ) ), "ImagePath", Str( u"/a.png" ) );
    EXPECT_EQ( Read( With( image, "ImageNamedClipboardName", Str( u"X" ) ) ), image );
}

TEST( CollectionTypes, TheTypeIsFoundUnderTheNewerKeyThenTheKeyThenItsOlderValues )
{
    const struct
    {
        __SafeCFPropertyList mStored;
        TextView mType; // "": can't be read
    } kCases[] = {
        { Dict( { { "CollectionType2", Str( u"JSON" ) }, { "CollectionType", Str( u"Range" ) } } ), u"JSON" },
        { Dict( { { "CollectionType2", Str( u"JSON" ) } } ), u"JSON" },
        { Dict( { { "CollectionType2", Str( u"json" ) }, { "CollectionType", Str( u"Range" ) } } ), u"Range" },
        { Dict( { { "CollectionType2", Number( 1 ) }, { "CollectionType", Str( u"Range" ) } } ), u"Range" },
        { Dict( { { "CollectionType2", Str( u"LinesInFile" ) }, { "CollectionType", Str( u"" ) } } ),
            u"PastClipboards" },
        { Dict( { { "CollectionType", Str( u"" ) } } ), u"PastClipboards" },
        { Dict( { { "CollectionType", Str( u"LinesInClipboard" ) } } ), u"LinesIn" },
        { Dict( { { "CollectionType", Str( u"LinesInVariable" ) } } ), u"LinesIn" },
        { Dict( { { "CollectionType", Str( u"LinesInFile" ) } } ), u"LinesIn" },
        { Dict( { { "CollectionType", Str( u"linesin" ) } } ), u"" },
        { Dict( { { "CollectionType", Number( 0 ) } } ), u"" },
        { Dict( {} ), u"" },
    };
    for ( const auto& [stored, type] : kCases )
    {
        if ( type.empty() )
        {
            EXPECT_EQ( Failure( stored ), "good" ) << Shown( stored );
            continue;
        }
        const auto saved = Read( stored );
        EXPECT_EQ( At( saved, "CollectionType" ), Str( type ) ) << Shown( stored );
        EXPECT_FALSE( At( saved, "CollectionType2" ) );
    }
    EXPECT_EQ( Failure( Str( u"Range" ) ), "dictionary && dictionary->IsCorrectTypeID()" );
    EXPECT_EQ( Failure( nullptr ), "dictionary && dictionary->IsCorrectTypeID()" );

    const auto variable = Dict( { { "CollectionType", Str( u"LinesInVariable" ) }, { "Source", Str( u"Variable" ) },
        { "Variable", Str( u"List" ) } } );
    EXPECT_EQ( At( Read( variable ), "Variable" ), Str( u"List" ) );
}

TEST( CollectionTypes, TheOlderFlagOfFilesStandsAboveTheOrder )
{
    const struct
    {
        __SafeCFPropertyList mRecursive;
        TextView mOrder, mRead;
    } kCases[] = {
        { Bool( true ), u"ModificationDate", u"Recursive" },
        { Bool( false ), u"ModificationDate", u"Alphabetical" },
        { Bool( false ), u"Recursive", u"Alphabetical" },
        { Str( u"true" ), u"ModificationDate", u"ModificationDate" },
        { Number( 1 ), u"nonsense", u"Alphabetical" },
        { nullptr, u"Recursive", u"Recursive" },
    };
    for ( const auto& [recursive, order, read] : kCases )
    {
        const auto stored =
            With( With( New( CollectionType::kFiles ), "SortOrder", Str( order ) ), "Recursive", recursive );
        EXPECT_EQ( Read( stored ), With( New( CollectionType::kFiles ), "SortOrder", Str( read ) ) ) << Shown( stored );
    }
}

TEST( CollectionTypes, DescriptionsTellWhatIsRunOver )
{
    const struct
    {
        std::vector<PlistEntry> mEntries;
        const char* mDescription;
    } kCases[] = {
        { { { "CollectionType", Str( u"Range" ) } }, "The Numbers from 1 to 10" },
        { { { "CollectionType", Str( u"Range" ) }, { "StartExpression", Str( u"N" ) }, { "Upwards", Bool( false ) } },
            "The Numbers from N down to 10" },
        { { { "CollectionType", Str( u"LinesIn" ) }, { "Source", Str( u"Variable" ) }, { "Variable", Str( u"List" ) } },
            "The Lines in Variable “List”" },
        { { { "CollectionType", Str( u"LinesIn" ) }, { "IncludeBlankLines", Bool( true ) } },
            "The Lines in the System Clipboard, Including Blank Lines" },
        { { { "CollectionType", Str( u"Files" ) }, { "Path", Str( u"~/My Files/" ) }, { "Reverse", Bool( true ) },
              { "IncludeInvisibles", Bool( true ) }, { "SortOrder", Str( u"FileSize" ) } },
            "The Files in “My Files” by Size, in Reverse Order, Including Invisible Files" },
        { { { "CollectionType", Str( u"SubstringsIn" ) }, { "Search", Str( u"a%" ) }, { "SearchKind", Str( u"Match" ) },
              { "ResultType", Str( u"Position" ) } },
            "The Positions of the Regular Expression “a%” in the System Clipboard" },
        { { { "CollectionType", Str( u"FoundImages" ) } }, "The Matches of the Image within All Screens, Best First" },
        { { { "CollectionType", Str( u"DictionaryKeys" ) } }, "The Keys of Dictionary “DictionaryName”" },
        { { { "CollectionType", Str( u"Volumes" ) }, { "AsPath", Bool( true ) } }, "The Paths of the Mounted Volumes" },
    };
    for ( const auto& [entries, description] : kCases )
    {
        XMutableDictionary stored;
        for ( const auto& [key, value] : entries )
            stored.Set( XKey( key ), value );
        const auto collection = CBaseCollection::CreateFromPropertyList( stored.Seal() );
        EXPECT_EQ( UTF8FromText( collection->GetDescription() ), description );
    }
}

TEST( CollectionTypes, EveryOneHasWordsAnIconAndAPageOfItsOwn )
{
    const LogCapture log;
    std::set<Text> names, pages;
    for ( std::size_t i = 0; i < std::size( kCollectionTypeNames ); ++i )
    {
        const auto collection = CBaseCollection::Create( CollectionType( i ) );
        for ( const Text& words : { collection->GetCollectionEditorDescription(), collection->GetDescription() } )
            EXPECT_TRUE( not words.empty() and not words.starts_with( u"cl" ) ) << UTF8FromText( words );
        EXPECT_TRUE( collection->GetXIcon().GetSavedData() );
        names.insert( collection->GetCollectionTypeDescription() );
        pages.insert( collection->WikiName() );
        EXPECT_EQ( collection->WikiName().find( u' ' ), Text::npos );
    }
    EXPECT_EQ( names.size(), std::size( kCollectionTypeNames ) );
    EXPECT_EQ( pages.size(), std::size( kCollectionTypeNames ) );
    EXPECT_TRUE( log.Lines().empty() ) << "a key without a text and an unknown icon are logged";
}

TEST( CollectionTypes, TheHelpDataHasALineForEachTypeSorted )
{
    const ScratchFolder folder;
    ASSERT_TRUE( CBaseCollection::WriteWikiHelpData( folder.Path() ) );
    std::istringstream lines( folder.Read( "Collections.txt" ) );
    std::vector<std::string> found;
    for ( std::string line; std::getline( lines, line ); )
    {
        EXPECT_EQ( std::count( line.begin(), line.end(), '\t' ), 3 ) << line;
        found.push_back( line.substr( 0, line.find( '\t' ) ) );
    }
    EXPECT_EQ( found.size(), std::size( kCollectionTypeNames ) );
    EXPECT_TRUE( std::is_sorted( found.begin(), found.end() ) );
    EXPECT_FALSE( CBaseCollection::WriteWikiHelpData( folder / "missing" ) );
}
