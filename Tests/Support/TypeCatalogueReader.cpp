// Reads the data files of the catalogues.
#include "Tests/Support/CatalogueValues.h"
#include "Tests/Support/TypeCatalogue.h"
#include "Utility/Text/Localization.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

using namespace Catalogue;

namespace
{
// The words and values of a line.
class Scanner
{
public:
    explicit Scanner( std::string_view inLine ) : mRest( inLine ) {}

    bool AtEnd()
    {
        mRest.remove_prefix( std::min( mRest.find_first_not_of( ' ' ), mRest.size() ) );
        return mRest.empty();
    }
    bool Take( std::string_view inWord )
    {
        if ( AtEnd() or not mRest.starts_with( inWord ) )
            return false;
        mRest.remove_prefix( inWord.size() );
        return true;
    }
    std::string Word( std::string_view inEnds = " " )
    {
        AtEnd();
        const std::size_t length = std::min( mRest.find_first_of( inEnds ), mRest.size() );
        const std::string word( mRest.substr( 0, length ) );
        mRest.remove_prefix( length );
        return word;
    }
    std::vector<std::string> Words()
    {
        std::vector<std::string> words;
        while ( not AtEnd() and mRest[0] != '|' )
            words.push_back( Word() );
        return words;
    }
    Value Pairs( char inEnd = 0 )
    {
        Value dictionary = XMutableDictionary().Seal();
        while ( not AtEnd() and mRest[0] != inEnd and not mRest.starts_with( "=>" ) )
        {
            const std::string key = Word( "=" );
            if ( not Take( "=" ) )
                throw std::runtime_error( "no value of " + key );
            dictionary = Setting( dictionary, key, Next() );
        }
        return dictionary;
    }
    Value Next();

private:
    Value Data()
    {
        std::vector<std::uint8_t> bytes;
        for ( const std::string digits = Word( ">" ); bytes.size() < digits.size() / 2; )
            bytes.push_back( std::uint8_t( std::stoi( digits.substr( bytes.size() * 2, 2 ), nullptr, 16 ) ) );
        Take( ">" );
        return XPlistData::Make( bytes );
    }

    std::string_view mRest;
};

Value Scanner::Next()
{
    if ( Take( "\"" ) )
    {
        const std::size_t length = mRest.find( '"' );
        const std::string text( mRest.substr( 0, length ) );
        mRest.remove_prefix( length + 1 );
        return UTF8( text );
    }
    if ( Take( "<" ) )
        return Data();
    if ( Take( "[]" ) )
        return ArrayOf( {} );
    if ( Take( "{" ) )
    {
        const Value dictionary = Pairs( '}' );
        Take( "}" );
        return dictionary;
    }
    if ( Take( "app:" ) )
        return Setting( {}, "Name", UTF8( Word( " }" ) ) );
    if ( Take( "localized:" ) )
        return Value::String( kvr_localized( TextFromUTF8( Word() ) ) );
    const std::string word = Word( " }" );
    if ( word == "true" or word == "false" )
        return FromWord( word );
    if ( word == "any" )
        return AnyNumber();
    return word.find( '.' ) == word.npos ? Value::Integer( std::stoll( word ) ) : Value::Real( std::stod( word ) );
}

std::vector<std::string> LinesOf( const std::string& inFile )
{
    std::vector<std::string> lines;
    std::ifstream file( KORVALEN_TESTS_FOLDER "/" + inFile );
    if ( not file )
        throw std::runtime_error( "no file " + inFile );
    for ( std::string line; std::getline( file, line ); )
    {
        if ( not line.empty() and line[0] != '#' )
            lines.push_back( line );
    }
    return lines;
}
} // namespace

// Reads the lines of a file into types, and those of parts wherever a type names one.
class TypeCatalogue::Reader
{
public:
    void ReadFile( const std::string& inFile )
    {
        for ( const std::string& line : LinesOf( inFile ) )
        {
            try
            {
                ReadLine( line );
            }
            catch ( const std::exception& error )
            {
                throw std::runtime_error( inFile + ": " + line + ": " + error.what() );
            }
        }
    }
    std::vector<CatalogueType> TakeTypes()
    {
        for ( auto& [type, lines] : mTypes )
        {
            for ( const std::string& line : lines )
                ReadTypeLine( type, line, {} );
            mDone.push_back( std::move( type ) );
        }
        return std::move( mDone );
    }

private:
    using Lines = std::vector<std::string>;

    // Vocabularies and parts may be told behind the types that use them, so lines are only sorted here.
    void ReadLine( const std::string& inLine )
    {
        if ( inLine[0] == ' ' )
        {
            if ( inLine.find_first_not_of( ' ' ) != 4 )
                throw std::runtime_error( "odd indent" );
            mInto->push_back( inLine.substr( 4 ) );
            return;
        }
        Scanner scanner( inLine );
        const std::string first = scanner.Word();
        if ( first == "vocabulary" )
        {
            mInto = &mVocabularies[scanner.Word()];
            mInto->push_back( inLine.substr( inLine.find( ' ', inLine.find( ' ' ) + 1 ) ) );
        }
        else if ( first == "part" )
            mInto = &mParts[scanner.Word()];
        else
        {
            mTypes.emplace_back();
            mTypes.back().first.mKey = first;
            mTypes.back().first.mWords = scanner.Words();
            mInto = &mTypes.back().second;
        }
    }
    void ReadTypeLine( CatalogueType& ioType, const std::string& inLine, const std::vector<CatalogueWhen>& inWhens );
    void ReadPart( CatalogueType& ioType, Scanner& inLine, const std::vector<CatalogueWhen>& inWhens );
    CatalogueExample ReadExample(
        Scanner& inLine, const std::string& inText, const std::vector<CatalogueWhen>& inWhens );
    CatalogueRow ReadRow( const std::string& inKey, Scanner& inLine, const std::vector<CatalogueWhen>& inWhens );
    void ReadKind( CatalogueRow& ioRow, Scanner& inLine );
    void ReadClause( CatalogueRow& ioRow, Scanner& inLine );
    std::vector<std::string> NamesOf( const std::string& inVocabulary )
    {
        std::vector<std::string> names;
        for ( const std::string& line : mVocabularies.at( inVocabulary ) )
        {
            for ( const std::string& name : Scanner( line ).Words() )
                names.push_back( name );
        }
        return names;
    }
    static CatalogueWhen ReadWhen( Scanner& inLine )
    {
        std::string key = inLine.Word();
        return { std::move( key ), inLine.Words() };
    }

    std::map<std::string, Lines> mVocabularies, mParts;
    std::vector<std::pair<CatalogueType, Lines>> mTypes;
    std::vector<CatalogueType> mDone;
    Lines* mInto = nullptr;
};

void TypeCatalogue::Reader::ReadTypeLine(
    CatalogueType& ioType, const std::string& inLine, const std::vector<CatalogueWhen>& inWhens )
{
    Scanner line( inLine );
    const std::string first = line.Word();
    if ( first == "part" )
        ReadPart( ioType, line, inWhens );
    else if ( first == "example" )
        ioType.mExamples.push_back( ReadExample( line, inLine, inWhens ) );
    else if ( first == "upgrades" )
        ioType.mUpgradesTo = line.Word();
    else if ( first == "traits" )
        ioType.mTraits.push_back( line.Words() );
    else if ( first == "never" )
        ioType.mNever = line.Words();
    else if ( first == "older-name" )
        ioType.mOlderNames.push_back( WordOf( line.Next() ) );
    else if ( first == "useless" or first == "useful" )
    {
        const bool useless = first == "useless";
        if ( line.AtEnd() )
            ( useless ? ioType.mNewIsUseless : ioType.mNewIsUseful ) = true;
        else
            ( useless ? ioType.mUseless : ioType.mUseful ).push_back( { inLine, line.Pairs(), {} } );
    }
    else
        ioType.mRows.push_back( ReadRow( first, line, inWhens ) );
}

void TypeCatalogue::Reader::ReadPart(
    CatalogueType& ioType, Scanner& inLine, const std::vector<CatalogueWhen>& inWhens )
{
    const Lines& lines = mParts.at( inLine.Word() );
    const std::vector<std::string> names = inLine.Words();
    std::vector<CatalogueWhen> whens = inWhens;
    if ( inLine.Take( "| when" ) )
        whens.push_back( ReadWhen( inLine ) );
    const std::size_t examples = ioType.mExamples.size();
    for ( std::string line : lines )
    {
        for ( std::size_t at = line.find( '@' ); at != line.npos; at = line.find( '@' ) )
            line.replace( at, 2, names.at( std::size_t( line[at + 1] - '1' ) ) );
        ReadTypeLine( ioType, line, whens );
    }
    // What a part saves isn't saved by a type that becomes another.
    if ( not ioType.mUpgradesTo.empty() )
        ioType.mExamples.resize( examples );
}

CatalogueExample TypeCatalogue::Reader::ReadExample(
    Scanner& inLine, const std::string& inText, const std::vector<CatalogueWhen>& inWhens )
{
    CatalogueExample example{ inText, inLine.Pairs(), {} };
    if ( not inLine.Take( "=>" ) )
        throw std::runtime_error( "an example without a result: " + inText );
    example.mSaves = inLine.Pairs();
    for ( const CatalogueWhen& when : inWhens )
    {
        example.mReads = Setting( example.mReads, when.mKey, FromWord( when.mWords.front() ) );
        example.mSaves = Setting( example.mSaves, when.mKey, FromWord( when.mWords.front() ) );
    }
    return example;
}

CatalogueRow TypeCatalogue::Reader::ReadRow(
    const std::string& inKey, Scanner& inLine, const std::vector<CatalogueWhen>& inWhens )
{
    CatalogueRow row;
    row.mKey = inKey;
    row.mWhens = inWhens;
    ReadKind( row, inLine );
    while ( not inLine.AtEnd() )
        ReadClause( row, inLine );
    return row;
}

void TypeCatalogue::Reader::ReadKind( CatalogueRow& ioRow, Scanner& inLine )
{
    ioRow.mKind = inLine.Word();
    if ( ioRow.mKind == "name" )
    {
        const std::vector<std::string> words = inLine.Words();
        ioRow.mNames = NamesOf( words.at( 0 ) );
        ioRow.mNew = UTF8( words.size() > 1 ? words[1] : ioRow.mNames.at( 0 ) );
        if ( not ioRow.Read( ioRow.mNew ) )
            throw std::runtime_error( "no such name for " + ioRow.mKey );
    }
    else if ( ioRow.mKind == "holds" )
    {
        CatalogueType part;
        for ( const std::string& line : mParts.at( inLine.Word() ) )
            ReadTypeLine( part, line, {} );
        ioRow.mPart = std::make_shared<CatalogueRows>( part.mRows );
        ioRow.mNew = CatalogueSaves( *ioRow.mPart, {} );
    }
    else if ( ioRow.mKind == "uuid" or ioRow.mKind == "own-uuid" )
        ioRow.mNew = AnyUUID();
    else if ( ioRow.mKind == "actions" )
        ioRow.mNew = ArrayOf( {} );
    else if ( ioRow.mKind == "conditions" )
        ioRow.mNew = ConditionsOf();
    else if ( ioRow.mKind == "collections" )
        ioRow.mNew = Setting( {}, "CollectionList", ArrayOf( {} ) );
    else if ( ioRow.mKind == "entries" )
        ioRow.mNew = ArrayOf( { CaseEntry( u"Contains", u"", ArrayOf( {} ) ) } );
    else if ( ioRow.mKind == "plugin-parameters" )
        ioRow.mNew = XMutableDictionary().Seal();
    else if ( ioRow.IsText() or ioRow.mKind == "boolean" or ioRow.mKind == "integer" or ioRow.mKind == "real" )
        ioRow.mNew = inLine.Next();
    else if ( ioRow.mKind != "data" and ioRow.mKind != "kept" and ioRow.mKind != "application" and
        ioRow.mKind != "uids" )
        throw std::runtime_error( "unknown kind " + ioRow.mKind + " of " + ioRow.mKey );
}

void TypeCatalogue::Reader::ReadClause( CatalogueRow& ioRow, Scanner& inLine )
{
    if ( not inLine.Take( "|" ) )
        throw std::runtime_error( "no bar behind " + ioRow.mKey );
    const std::string clause = inLine.Word();
    if ( clause == "missing" )
    {
        const Value value = inLine.Next();
        ioRow.mMissing = ioRow.mKind == "real" ? Value::Real( value.AsNumber()->AsReal() ) : value;
    }
    else if ( clause == "older" )
    {
        ioRow.mOlderKey = inLine.Word();
        ioRow.mOlderKind = inLine.Word();
    }
    else if ( clause == "when" )
        ioRow.mWhens.push_back( ReadWhen( inLine ) );
    else if ( clause == "unless" )
        ioRow.mUnless = inLine.Take( "\"\"" ) ? "" : inLine.Word();
    else if ( clause == "required" )
    {
        const std::string name = inLine.Word();
        ioRow.mRequiredAs =
            "dictionary->Get( CFSTR(\"" + ioRow.mKey + "\"), " + ( name == "?" ? std::string() : name + " )" );
        if ( inLine.Take( "unless " ) )
            ioRow.mNotRequired = ReadWhen( inLine );
    }
    else if ( clause == "required-says" )
        ioRow.mRequiredAs = inLine.Word();
    else if ( clause == "masked" )
        ioRow.mMask = std::stoi( inLine.Word() );
    else if ( clause == "within" )
    {
        ioRow.mLow = std::stoi( inLine.Word() );
        ioRow.mHigh = std::stoi( inLine.Word() );
    }
    else if ( clause == "values" )
    {
        for ( const std::string& word : inLine.Words() )
            ioRow.mValues.push_back(
                ioRow.mKind == "real" ? Value::Real( std::stod( word ) ) : Scanner( word ).Next() );
    }
    else if ( clause == "special" )
        ioRow.mSpecial = true;
    else if ( clause == "also-kept" )
        ioRow.mAlsoKept = true;
    else if ( clause == "uncompared" )
        ioRow.mUncompared = true;
    else if ( clause == "clears" )
        ioRow.mClears = true;
    else
        throw std::runtime_error( "unknown clause " + clause + " of " + ioRow.mKey );
}

TypeCatalogue::TypeCatalogue( const std::string& inFile )
{
    Reader reader;
    reader.ReadFile( "Actions/FieldCatalogue.txt" );
    reader.ReadFile( inFile );
    mTypes = reader.TakeTypes();
}

const CatalogueType& TypeCatalogue::Find( std::string_view inKey ) const
{
    for ( const CatalogueType& type : mTypes )
    {
        if ( type.mKey == inKey )
            return type;
    }
    throw std::runtime_error( "no type " + std::string( inKey ) );
}
