// The thirteen types of collection against a table of their keys and defaults, written by hand.
#include "Collections/CBaseCollection.h"
#include "Tests/Actions/ActionTestSupport.h"
#include "Utility/Search/StringSearchee.h"
#include "XCAF/XIcon.h"

#include <set>

namespace
{
__SafeCFPropertyList Number( std::int64_t inValue )
{
    return __SafeCFPropertyList::Integer( inValue );
}

__SafeCFPropertyList Area( TextView inType )
{
    return Dict( { { "ScreenAreaType", Str( inType ) }, { "WindowName", Str( u"" ) },
        { "IndexExpression", Str( u"2" ) }, { "LeftExpression", Str( u"125" ) }, { "TopExpression", Str( u"125" ) },
        { "WidthExpression", Str( u"300" ) }, { "HeightExpression", Str( u"300" ) } } );
}

struct Key
{
    const char* mKey;
    __SafeCFPropertyList mDefault;
    std::vector<__SafeCFPropertyList> mOthers;
};

struct Type
{
    TextView mName;
    std::vector<Key> mKeys;

    __SafeCFPropertyList Bare() const { return Dict( { { "CollectionType", Str( mName ) } } ); }
    __SafeCFPropertyList Full() const
    {
        __SafeCFPropertyList full = Bare();
        for ( const Key& key : mKeys )
            full = With( full, key.mKey, key.mDefault );
        return full;
    }
};

std::vector<__SafeCFPropertyList> Names( std::initializer_list<TextView> inNames )
{
    std::vector<__SafeCFPropertyList> names;
    for ( const TextView name : inNames )
        names.push_back( Str( name ) );
    return names;
}

const std::vector<Type>& Types()
{
    static const std::vector<Type> gTypes = {
        { u"Range",
            { { "StartExpression", Str( u"1" ), { Str( u"" ), Str( u"N+1" ) } },
                { "EndExpression", Str( u"10" ), { Str( u"2^8" ) } },
                { "Upwards", Bool( true ), { Bool( false ) } } } },
        { u"Applications", {} },
        { u"Files",
            { { "Path", Str( u"" ), { Str( u"~/Documents" ) } },
                { "SortOrder", Str( u"Alphabetical" ),
                    Names( { u"FileSize", u"CreationDate", u"ModificationDate", u"AddedDate", u"DownloadedDate",
                        u"LastUsedDate", u"Recursive" } ) },
                { "Reverse", Bool( false ), { Bool( true ) } },
                { "IncludeInvisibles", Bool( false ), { Bool( true ) } } } },
        { u"FinderSelection", {} },
        { u"Volumes", { { "AsPath", Bool( false ), { Bool( true ) } } } },
        { u"LinesIn",
            { { "Source", Str( u"Clipboard" ), Names( { u"Nothing", u"Source", u"TriggerClipboard" } ) },
                { "IncludeBlankLines", Bool( false ), { Bool( true ) } } } },
        { u"SubstringsIn",
            { { "Source", Str( u"Clipboard" ), Names( { u"Nothing", u"TriggerClipboard" } ) },
                { "SearchKind", Str( u"CaseSensitive" ), Names( { u"CaseInsensitive", u"Match" } ) },
                { "ResultType", Str( u"String" ), Names( { u"Position", u"Range" } ) },
                { "Search", Str( u"" ), { Str( u"a+" ) } } } },
        { u"PastClipboards", {} },
        { u"Dictionaries", {} },
        { u"DictionaryKeys", { { "Dictionary", Str( u"DictionaryName" ), { Str( u"Colours" ) } } } },
        { u"FoundImages",
            { { "ImageSource", Str( u"Image" ), Names( { u"SystemClipboard", u"TriggerClipboard" } ) },
                { "Fuzz", Number( 15 ), { Number( 0 ), Number( 80 ) } },
                { "DisplayMatches", Bool( false ), { Bool( true ) } },
                { "ScreenArea", Area( u"ScreenAll" ), { Area( u"WindowFront" ) } },
                { "SortOrder", Str( u"BestFirst" ),
                    Names( { u"TopToBottom", u"LeftToRight", u"BottomToTop", u"RightToLeft" } ) } } },
        { u"Variables", {} },
        { u"JSON",
            { { "Text", Str( u"" ), { Str( u"[1]" ) } },
                { "ResultType", Str( u"Key" ), Names( { u"StrictKey", u"JSON", u"PrettyJSON" } ) } } },
    };
    return gTypes;
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

TEST( CollectionTypes, ANewOneAndOneReadFromItsTypeAloneHaveTheDefaults )
{
    ASSERT_EQ( Types().size(), std::size( kCollectionTypeNames ) );
    for ( std::size_t i = 0; i < Types().size(); ++i )
    {
        const Type& type = Types()[i];
        const auto collection = CBaseCollection::Create( CollectionType( i ) );
        EXPECT_EQ( collection->GetCollectionType(), CollectionType( i ) );
        EXPECT_EQ( __SafeCFPropertyList( collection->CopyToPropertyList() ), type.Full() )
            << Shown( collection->CopyToPropertyList() );
        EXPECT_EQ( Read( type.Bare() ), type.Full() ) << Shown( Read( type.Bare() ) );
    }
    LogCapture log;
    EXPECT_EQ( CBaseCollection::Create( CollectionType( 13 ) ), nullptr );
    EXPECT_EQ( log.CountContaining( "Assertion Failed" ), 1u );
}

TEST( CollectionTypes, EachChangedValueComesBackAndTellsCollectionsApart )
{
    for ( const Type& type : Types() )
    {
        const auto original = CBaseCollection::CreateFromPropertyList( type.Full() );
        for ( const Key& key : type.mKeys )
        {
            for ( const auto& value : key.mOthers )
            {
                const auto stored = With( type.Full(), key.mKey, value );
                const auto changed = CBaseCollection::CreateFromPropertyList( stored );
                EXPECT_EQ( __SafeCFPropertyList( changed->Clone()->CopyToPropertyList() ), stored )
                    << Shown( stored ) << Shown( changed->CopyToPropertyList() );
                EXPECT_EQ( changed->CompareWith( *changed->Clone() ), 0 );
                EXPECT_NE( changed->CompareWith( *original ), 0 ) << key.mKey;
                EXPECT_EQ( changed->CompareWith( *original ), -original->CompareWith( *changed ) ) << key.mKey;
            }
        }
    }
}

TEST( CollectionTypes, ValuesOfAWrongTypeAndUnknownNamesLeaveTheDefaults )
{
    const __SafeCFPropertyList kWrong[] = { Str( u"nonsense" ), Number( 5 ), Bool( true ), Array( {} ), Dict( {} ),
        __SafeCFPropertyList::Real( 0.5 ) };
    for ( const Type& type : Types() )
    {
        for ( const Key& key : type.mKeys )
        {
            for ( const auto& wrong : kWrong )
            {
                // A text takes any string.
                const bool isName = key.mDefault.AsString() and key.mOthers.size() > 1;
                if ( wrong.GetType() == key.mDefault.GetType() and not isName )
                    continue;
                if ( wrong.AsString() and std::string( key.mKey ) == "StartExpression" )
                    continue;
                EXPECT_EQ( Read( With( type.Full(), key.mKey, wrong ) ), type.Full() )
                    << UTF8FromText( type.mName ) << " " << key.mKey << Shown( wrong );
            }
        }
    }
}

TEST( CollectionTypes, AreOrderedByNumberFirst )
{
    for ( std::size_t i = 0; i < Types().size(); ++i )
    {
        for ( std::size_t j = 0; j < Types().size(); ++j )
        {
            const int order = CBaseCollection::Create( CollectionType( i ) )
                                  ->CompareWith( *CBaseCollection::Create( CollectionType( j ) ) );
            EXPECT_EQ( order, i < j ? -1 : int( i > j ) );
        }
    }
}

TEST( CollectionTypes, WhatBelongsToTheChosenSourceIsKeptAndNothingElse )
{
    const auto lines = With( With( Types()[5].Full(), "Source", Str( u"Variable" ) ), "Variable", Str( u"List" ) );
    EXPECT_EQ( Read( lines ), lines );
    EXPECT_EQ( Read( With( lines, "Text", Str( u"left from before" ) ) ), lines );
    const auto image = With( With( Types()[10].Full(), "ImageSource", Str( u"File" ) ), "ImagePath", Str( u"/a.png" ) );
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
        const auto stored = With( With( Types()[2].Full(), "SortOrder", Str( order ) ), "Recursive", recursive );
        EXPECT_EQ( Read( stored ), With( Types()[2].Full(), "SortOrder", Str( read ) ) ) << Shown( stored );
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
            "The Lines in System Clipboard, Including Blank Lines" },
        { { { "CollectionType", Str( u"Files" ) }, { "Path", Str( u"~/My Files/" ) }, { "Reverse", Bool( true ) },
              { "IncludeInvisibles", Bool( true ) }, { "SortOrder", Str( u"FileSize" ) } },
            "The Files in “My Files” by Size, in Reverse Order, Including Invisible Files" },
        { { { "CollectionType", Str( u"SubstringsIn" ) }, { "Search", Str( u"a%" ) }, { "SearchKind", Str( u"Match" ) },
              { "ResultType", Str( u"Position" ) } },
            "The Positions of the Regular Expression “a%” in System Clipboard" },
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

TEST( CollectionTypes, EveryOneHasWordsAnIconAndAPageOfItsOwnWhateverItsValues )
{
    LogCapture log;
    std::set<Text> names, pages;
    for ( const Type& type : Types() )
    {
        const auto collection = CBaseCollection::CreateFromPropertyList( type.Full() );
        EXPECT_FALSE( collection->GetCollectionEditorDescription().empty() );
        EXPECT_TRUE( collection->GetXIcon().Defined() );
        names.insert( collection->GetCollectionTypeDescription() );
        pages.insert( collection->WikiName() );
        EXPECT_EQ( collection->WikiName().find( u' ' ), Text::npos );
        for ( const Key& key : type.mKeys )
        {
            for ( const auto& value : key.mOthers )
            {
                const auto changed = CBaseCollection::CreateFromPropertyList( With( type.Full(), key.mKey, value ) );
                EXPECT_FALSE( changed->GetDescription().empty() );
                StringSearchee searchee;
                changed->AddMatchStrings( searchee );
                if ( std::string( key.mKey ) != "ScreenArea" and key.mOthers.size() == 1 and value.AsString() )
                {
                    bool found = false;
                    for ( const auto& element : searchee.GetElements() )
                        found = found or element.mText == value.AsString()->GetText();
                    EXPECT_TRUE( found ) << key.mKey;
                }
            }
        }
    }
    EXPECT_EQ( names.size(), Types().size() );
    EXPECT_EQ( pages.size(), Types().size() );
    EXPECT_EQ( log.CountContaining( "" ), 0u ) << "a key without a text is logged";
}
