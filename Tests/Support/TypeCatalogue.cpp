// What the rows of a catalogue say of a dictionary.
#include "Tests/Support/TypeCatalogue.h"
#include "Tests/Support/CatalogueValues.h"

#include <algorithm>
#include <cctype>
#include <functional>

using namespace Catalogue;

namespace
{
bool IsUUID( const Value& inValue )
{
    const std::string text = inValue.AsString() ? inValue.AsString()->GetUTF8() : std::string();
    if ( text.size() != 36 )
        return false;
    for ( std::size_t i = 0; i < text.size(); ++i )
    {
        const bool dash = i == 8 or i == 13 or i == 18 or i == 23;
        if ( dash != ( text[i] == '-' ) or ( not dash and not std::isxdigit( static_cast<unsigned char>( text[i] ) ) ) )
            return false;
    }
    return true;
}

using Words = std::map<std::string, std::string>;

bool IsUsed( const CatalogueRow& inRow, const Words& inWords )
{
    return std::all_of( inRow.mWhens.begin(), inRow.mWhens.end(), [&]( const CatalogueWhen& inWhen ) {
        const auto word = inWords.find( inWhen.mKey );
        return word != inWords.end() and inWhen.Has( word->second );
    } );
}

bool IsRequired( const CatalogueRow& inRow, const Words& inWords )
{
    if ( not( inRow.mRequiredAs or inRow.mClears ) or not IsUsed( inRow, inWords ) )
        return false;
    const auto word = inWords.find( inRow.mNotRequired.mKey );
    return word == inWords.end() or not inRow.mNotRequired.Has( word->second );
}

// The value that an object has after reading, for each row in its order.
void ForEveryValue( const CatalogueRows& inRows, const Value& inDictionary,
    const std::function<void( const CatalogueRow&, const Value&, const Words& )>& inBlock )
{
    Words words;
    for ( const CatalogueRow& row : inRows )
    {
        Value value;
        if ( const Value stored = Lookup( inDictionary, row.mKey ) )
            value = row.Read( stored );
        if ( const Value older = Lookup( inDictionary, row.mOlderKey ); older and not value )
            value = row.ReadOlder( older );
        if ( not value )
            value = not inDictionary or IsRequired( row, words ) ? row.mNew : row.Missing();
        words[row.mKey] = WordOf( value );
        inBlock( row, value, words );
    }
}
} // namespace

__SafeCFPropertyList CatalogueSaves( const CatalogueRows& inRows, const __SafeCFPropertyList& inDictionary )
{
    Value saved = XMutableDictionary().Seal();
    ForEveryValue( inRows, inDictionary, [&]( const CatalogueRow& inRow, const Value& inValue, const Words& inWords ) {
        if ( inValue and IsUsed( inRow, inWords ) and not( inRow.mUnless and *inRow.mUnless == WordOf( inValue ) ) )
            saved = Setting( saved, inRow.mKey, inValue );
    } );
    return saved;
}

__SafeCFPropertyList WithRequiredKeys( const CatalogueRows& inRows, const __SafeCFPropertyList& inDictionary )
{
    Value dictionary = inDictionary;
    ForEveryValue( inRows, inDictionary, [&]( const CatalogueRow& inRow, const Value&, const Words& inWords ) {
        if ( IsRequired( inRow, inWords ) and not Lookup( dictionary, inRow.mKey ) )
            dictionary = Setting( dictionary, inRow.mKey, inRow.mNew );
    } );
    return dictionary;
}

__SafeCFPropertyList DictionaryUsing( const CatalogueRows& inRows, const CatalogueRow& inRow )
{
    Value dictionary = CatalogueSaves( inRows, {} );
    for ( const CatalogueWhen& when : inRow.mWhens )
        dictionary = Setting( dictionary, when.mKey, FromWord( when.mWords.front() ) );
    for ( const CatalogueRow& row : inRows )
    {
        const auto free = std::find_if( row.mNames.begin(), row.mNames.end(),
            [&]( const std::string& inName ) { return not inRow.mNotRequired.Has( inName ); } );
        if ( row.mKey == inRow.mNotRequired.mKey )
            dictionary = Setting( dictionary, row.mKey, UTF8( *free ) );
    }
    return CatalogueSaves( inRows, dictionary );
}

__SafeCFPropertyList WithoutWhatIsNew(
    const CatalogueRows& inRows, const __SafeCFPropertyList& inExpected, const __SafeCFPropertyList& inSaved )
{
    Value result = inSaved;
    for ( const CatalogueRow& row : inRows )
    {
        const Value expected = Lookup( inExpected, row.mKey ), saved = Lookup( inSaved, row.mKey );
        if ( ( expected == AnyUUID() and IsUUID( saved ) ) or ( expected == AnyNumber() and saved.AsNumber() ) )
            result = Setting( result, row.mKey, expected );
        else if ( row.mPart and expected and saved.AsDictionary() )
            result = Setting( result, row.mKey, WithoutWhatIsNew( *row.mPart, expected, saved ) );
    }
    return result;
}

__SafeCFPropertyList WithoutOwnUUIDs( const CatalogueRows& inRows, const __SafeCFPropertyList& inDictionary )
{
    Value result = inDictionary;
    for ( const CatalogueRow& row : inRows )
    {
        if ( row.mKind == "own-uuid" )
            result = Setting( result, row.mKey, {} );
        else if ( const Value held = Lookup( result, row.mKey ); row.mPart and held.AsDictionary() )
            result = Setting( result, row.mKey, WithoutOwnUUIDs( *row.mPart, held ) );
    }
    return result;
}
