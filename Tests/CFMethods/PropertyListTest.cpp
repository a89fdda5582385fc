#include "CFMethods/PropertyList.h"
#include "CFMethods/PropertyListReadObserver.h"
#include "Tests/CFMethods/CollidingKeys.h"
#include "Tests/CFMethods/RandomPropertyList.h"
#include "Tests/Support/AllocationCounter.h"
#include "Tests/Support/SmallStack.h"

#include <barrier>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <thread>

namespace
{
constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The read's answer; a read that fails has to leave its target alone.
template<class T>
std::optional<T> Read( const XPlistDictionary& inDictionary, T inUntouched )
{
    T target = inUntouched;
    if ( inDictionary.Get( CFSTR( "Key" ), target ) )
        return target;
    EXPECT_EQ( target, inUntouched );
    return {};
}

template<class T>
bool ReadsAs( const XPlistDictionary& inDictionary, const XPlistNode* inNode )
{
    CFContainer<T> target;
    const bool found = inDictionary.Get( CFSTR( "Key" ), target );
    EXPECT_EQ( target.GetCFRef(), found ? inNode : nullptr );
    return found;
}

CFContainer<XPlistDictionary> DictionaryWith( __SafeCFPropertyList inValue )
{
    XMutableDictionary dictionary;
    dictionary.Set( CFSTR( "Another" ), __SafeCFPropertyList::Boolean( true ) );
    dictionary.Set( CFSTR( "Key" ), std::move( inValue ) );
    return dictionary.Seal();
}

// Arrays and dictionaries in turn, each in the next.
__SafeCFPropertyList DeepValue( int inDepth )
{
    __SafeCFPropertyList value = __SafeCFPropertyList::Integer( 7000 );
    for ( int i = 0; i < inDepth; ++i )
    {
        XMutableArray array;
        array.Append( std::move( value ) );
        value = array.Seal();
        if ( i % 2 )
            value = DictionaryWith( std::move( value ) );
    }
    return value;
}
} // namespace

TEST( PropertyList, ATypedReadAnswersOnlyWhatFitsAndLeavesTheTargetAloneOtherwise )
{
    constexpr std::int64_t kMost32 = std::numeric_limits<std::int32_t>::max(),
                           kMost64 = std::numeric_limits<std::int64_t>::max();
    using Value = __SafeCFPropertyList;
    const struct
    {
        const char* mName;
        Value mValue;
        std::optional<std::int32_t> m32;
        std::optional<std::int64_t> m64;
        std::optional<double> mReal;
        std::optional<bool> mBoolean;
    } kCases[] = {
        { "zero", Value::Integer( 0 ), 0, 0, 0.0, {} },
        { "shared small", Value::Integer( 255 ), 255, 255, 255.0, {} },
        { "largest 32", Value::Integer( kMost32 ), kMost32, kMost32, double( kMost32 ), {} },
        { "above 32", Value::Integer( kMost32 + 1 ), {}, kMost32 + 1, 2147483648.0, {} },
        { "least 32", Value::Integer( -kMost32 - 1 ), -kMost32 - 1, -kMost32 - 1, -2147483648.0, {} },
        { "below 32", Value::Integer( -kMost32 - 2 ), {}, -kMost32 - 2, -2147483649.0, {} },
        { "largest 64", Value::Integer( kMost64 ), {}, kMost64, kTwoTo63, {} },
        { "least 64", Value::Integer( -kMost64 - 1 ), {}, -kMost64 - 1, -kTwoTo63, {} },
        { "unsigned that fits", XPlistNumber::MakeUnsigned( 5 ), 5, 5, 5.0, {} },
        { "above 64", XPlistNumber::MakeUnsigned( std::uint64_t( 1 ) << 63 ), {}, {}, kTwoTo63, {} },
        { "whole real", Value::Real( 3.0 ), 3, 3, 3.0, {} },
        { "negative zero", Value::Real( -0.0 ), 0, 0, 0.0, {} },
        { "fraction", Value::Real( 3.5 ), {}, {}, 3.5, {} },
        { "real 2^31", Value::Real( 2147483648.0 ), {}, std::int64_t( 1 ) << 31, 2147483648.0, {} },
        { "real 2^63", Value::Real( kTwoTo63 ), {}, {}, kTwoTo63, {} },
        { "real -2^63", Value::Real( -kTwoTo63 ), {}, -kMost64 - 1, -kTwoTo63, {} },
        { "infinity", Value::Real( HUGE_VAL ), {}, {}, HUGE_VAL, {} },
        { "true", Value::Boolean( true ), {}, {}, {}, true },
        { "false", Value::Boolean( false ), {}, {}, {}, false },
        { "string", Value::String( u"1" ), {}, {}, {}, {} },
        { "date", XPlistDate::Make( 1.0 ), {}, {}, {}, {} },
        { "data", XPlistData::Make( {} ), {}, {}, {}, {} },
        { "array", XMutableArray().Seal(), {}, {}, {}, {} },
        { "dictionary", XMutableDictionary().Seal(), {}, {}, {}, {} },
    };
    for ( const auto& row : kCases )
    {
        SCOPED_TRACE( row.mName );
        const auto dictionary = DictionaryWith( row.mValue );
        EXPECT_EQ( Read( *dictionary, std::int32_t( 77 ) ), row.m32 );
        EXPECT_EQ( Read( *dictionary, std::int64_t( 77 ) ), row.m64 );
        EXPECT_EQ( Read( *dictionary, 77.5 ), row.mReal );
        EXPECT_EQ( Read( *dictionary, true ).value_or( true ), row.mBoolean.value_or( true ) );
        EXPECT_EQ( Read( *dictionary, false ), row.mBoolean );
        EXPECT_EQ( Read( *dictionary, XText( u"old" ) ).has_value(), row.mValue.Is( XPlistType::kString ) );
        const XPlistNode* const node = row.mValue.GetNode();
        EXPECT_EQ( ReadsAs<XPlistArray>( *dictionary, node ), row.mValue.Is( XPlistType::kArray ) );
        EXPECT_EQ( ReadsAs<XPlistDictionary>( *dictionary, node ), row.mValue.Is( XPlistType::kDictionary ) );
        EXPECT_EQ( ReadsAs<XPlistData>( *dictionary, node ), row.mValue.Is( XPlistType::kData ) );
        __SafeCFPropertyList any;
        EXPECT_TRUE( dictionary->Get( CFSTR( "Key" ), any ) );
        EXPECT_EQ( any.GetNode(), node );
        EXPECT_FALSE( dictionary->Get( CFSTR( "Missing" ), any ) );
        EXPECT_EQ( any.GetNode(), node );
    }
    double notANumber = 0;
    EXPECT_TRUE( DictionaryWith( Value::Real( kNaN ) )->Get( CFSTR( "Key" ), notANumber ) );
    EXPECT_NE( notANumber, notANumber );
    EXPECT_FALSE( Read( *DictionaryWith( Value::Real( kNaN ) ), std::int64_t( 77 ) ) );
}

// The model is a map; dictionaries of all sizes, because short and long ones are searched differently.
TEST( PropertyList, ADictionaryHoldsWhatWasSetLastInTheOrderOfUnits )
{
    for ( unsigned seed = 1; seed <= 200; ++seed )
    {
        SCOPED_TRACE( seed );
        RandomPropertyList random( seed, { .mLongLengths = false } );
        std::map<Text, __SafeCFPropertyList> model;
        std::vector<Text> names( 1 + random.Below( 60 ) );
        for ( Text& name : names )
            name = random.Below( 4 ) ? random.String() : names[0] + char16_t( random.Below( 0x10000 ) );
        XMutableDictionary dictionary;
        for ( std::uint64_t step = random.Below( 150 ); step > 0; --step )
        {
            const Text& name = names[random.Below( names.size() )];
            const __SafeCFPropertyList value = random.Below( 4 ) ? random.Leaf() : __SafeCFPropertyList();
            dictionary.Set( XText( name ), value );
            model.erase( name );
            if ( value )
                model.emplace( name, value );
            if ( random.Below( 40 ) == 0 )
            {
                const auto part = dictionary.Seal();
                dictionary.SetAll( *part );
            }
        }
        const auto sealed = dictionary.Seal();
        ASSERT_EQ( sealed->GetCount(), model.size() );
        auto expected = model.begin();
        for ( const auto& entry : sealed->GetEntries() )
        {
            EXPECT_EQ( entry.mKey->GetText(), expected->first );
            EXPECT_EQ( entry.mValue, expected->second.GetNode() );
            ++expected;
        }
        for ( const Text& name : names )
        {
            const auto known = model.find( name );
            EXPECT_EQ( sealed->Find( XText( name ) ), known == model.end() ? nullptr : known->second.GetNode() );
            EXPECT_EQ( sealed->Find( XText( name + u'~' ) ),
                model.contains( name + u'~' ) ? model[name + u'~'].GetNode() : nullptr );
        }
        EXPECT_EQ( dictionary.Seal()->GetCount(), 0u ) << "sealing empties";
    }
}

TEST( PropertyList, AHundredThousandKeysInAnyOrderAreSortedAndFound )
{
    constexpr std::int64_t kCount = 100000;
    XMutableDictionary dictionary;
    // Multiplying by an odd number visits all in no order; each twice, the second counts.
    for ( std::int64_t i = 0; i < 2 * kCount; ++i )
        dictionary.SetInteger( XKey( std::to_string( i * 77777 % kCount ) ), i );
    const auto sealed = dictionary.Seal();
    ASSERT_EQ( sealed->GetCount(), std::size_t( kCount ) );
    for ( std::size_t i = 1; i < sealed->GetCount(); ++i )
        ASSERT_LT( sealed->GetEntries()[i - 1].mKey->Compare( *sealed->GetEntries()[i].mKey ), 0 );
    for ( std::int64_t i = kCount; i < 2 * kCount; ++i )
    {
        std::int64_t found = 0;
        ASSERT_TRUE( sealed->Get( XKey( std::to_string( i * 77777 % kCount ) ), found ) );
        ASSERT_EQ( found, i );
    }
}

TEST( PropertyList, StringsOfEqualUnitsAreEqualHoweverTheyWereMade )
{
    for ( unsigned seed = 1; seed <= 300; ++seed )
    {
        RandomPropertyList random( seed );
        const Text a = random.String(), b = random.Below( 3 ) ? random.String() : a;
        const auto x = XPlistString::Make( a ), y = XPlistString::Make( b );
        EXPECT_EQ( x->Equals( *y ), a == b ) << seed;
        EXPECT_EQ( x->Equals( b ), a == b ) << seed;
        EXPECT_EQ( x->Compare( *y ) < 0, a < b ) << seed;
        EXPECT_EQ( x->Compare( *y ) > 0, a > b ) << seed;
        EXPECT_EQ( x->GetText(), a ) << seed;
        const std::string bytes = x->GetUTF8();
        EXPECT_EQ( XPlistString::MakeUTF8( bytes )->GetText(), TextFromUTF8( bytes ) ) << seed;
        EXPECT_EQ( x->IsASCII(), std::all_of( a.begin(), a.end(), []( char16_t u ) { return u < 0x80; } ) ) << seed;
    }
    EXPECT_TRUE( XPlistString::MakeUTF8( {} )->Equals( *XPlistString::Make( TextView() ) ) );
    EXPECT_TRUE( XPlistString::InternASCII( {} )->Equals( TextView() ) );
}

TEST( PropertyList, KeysOfEqualContentAreOneStringForAsLongAsSomebodyHoldsIt )
{
    // Too long to be one of those that live for ever.
    constexpr std::string_view kKey = "PropertyListTest.KeysOfEqualContentAreOneStringForAsLongAsSomebodyHoldsIt";
    auto first = XPlistString::InternASCII( kKey );
    const auto shared = XPlistString::MakeASCII( kKey );
    const auto second = XPlistString::Intern( shared );
    EXPECT_EQ( first.GetCFRef(), second.GetCFRef() );
    EXPECT_FALSE( shared->IsInterned() ) << "a string that others hold isn't marked behind their backs";
    EXPECT_EQ( first->GetRetainCount(), 2u );
    EXPECT_EQ( first->KeyHash(), XKey( kKey ).Hash() );
    const auto wide = XPlistString::Intern( XPlistString::Make( u"Größe" ) );
    EXPECT_EQ( wide.GetCFRef(), XPlistString::Intern( XPlistString::Make( u"Größe" ) ).GetCFRef() );
    EXPECT_NE( wide.GetCFRef(), XPlistString::Intern( XPlistString::Make( u"Grösse" ) ).GetCFRef() );
}

TEST( PropertyList, CraftedKeysOfOneHashWorkAsKeysAllTheSame )
{
    const std::vector<Text> names = CollidingKeys( 700, 0 );
    const auto build = [&names] {
        XMutableDictionary dictionary;
        for ( std::size_t i = 0; i < names.size(); ++i )
            dictionary.Set( XText( names[i] ), __SafeCFPropertyList::Integer( std::int64_t( i ) ) );
        return dictionary.Seal();
    };
    auto a = build();
    const auto b = build();
    EXPECT_EQ( a->GetCount(), names.size() );
    EXPECT_EQ( __SafeCFPropertyList( a ), __SafeCFPropertyList( b ) );
    std::size_t shared = 0;
    for ( std::size_t i = 0; i < names.size(); ++i )
    {
        const XPlistNode* const found = a->Find( XText( names[i] ) );
        ASSERT_NE( found, nullptr );
        EXPECT_TRUE( __SafeCFPropertyList( found ) == __SafeCFPropertyList::Integer( std::int64_t( i ) ) );
        shared += a->GetEntries()[i].mKey == b->GetEntries()[i].mKey;
    }
    EXPECT_GT( shared, 0u );
    EXPECT_LT( shared, names.size() ) << "the crowd is bounded, so these names no longer collide";
    // A name outside the table is a key of its own; interning it again doesn't copy it again.
    const auto alone = XPlistString::Intern( XPlistString::Make( names.back() ) );
    EXPECT_EQ( XPlistString::Intern( alone ).GetCFRef(), alone.GetCFRef() );
    // Taking keys out of a crowd has to leave the others where they can be found.
    a = {};
    for ( std::size_t i = 0; i < names.size(); i += 2 )
        EXPECT_NE( b->Find( XText( names[i] ) ), nullptr );
    EXPECT_TRUE( __SafeCFPropertyList( build() ) == __SafeCFPropertyList( b ) );
}

TEST( PropertyList, ThreadsMayShareValuesAndInternTheSameKeys )
{
    constexpr int kThreads = 4, kRounds = 2000;
    const CFContainer<XPlistString> unsealed = XPlistString::Make( u"handed to every thread" );
    const auto common = DictionaryWith( DeepValue( 10 ) );
    std::barrier start( kThreads );
    std::vector<CFContainer<XPlistDictionary>> results( kThreads );
    std::vector<std::jthread> threads;
    for ( int thread = 0; thread < kThreads; ++thread )
        threads.emplace_back( [&, thread] {
            start.arrive_and_wait();
            for ( int round = 0; round < kRounds; ++round )
            {
                XMutableDictionary dictionary;
                for ( int key = 0; key < 8; ++key )
                    dictionary.SetInteger( XKey( "Key " + std::to_string( ( round * 3 + key ) % 24 ) ), key );
                dictionary.Set( XText( unsealed ), common );
                results[std::size_t( thread )] = dictionary.Seal();
            }
        } );
    threads.clear();
    for ( const auto& result : results )
    {
        EXPECT_TRUE( __SafeCFPropertyList( result ) == __SafeCFPropertyList( results[0] ) );
        EXPECT_EQ( result->GetEntries()[0].mKey, results[0]->GetEntries()[0].mKey );
    }
    EXPECT_EQ( unsealed->GetRetainCount(), 1u );
}

// The last but one holder lets go on one thread while the last makes a key of the string on another.
TEST( PropertyList, AStringMayBecomeAKeyTheMomentItsOtherHolderLetsGo )
{
    for ( int round = 0; round < 500; ++round )
    {
        CFContainer<XPlistString> mine = XPlistString::Make( u"let go " + TextFromASCII( std::to_string( round ) ) );
        CFContainer<XPlistString> other = mine;
        std::jthread thread( [held = std::move( other )]() mutable { held = {}; } );
        while ( mine->GetRetainCount() != 1 )
            std::this_thread::yield();
        const auto key = XPlistString::Intern( std::move( mine ) );
        EXPECT_TRUE( key->IsInterned() );
    }
}

TEST( PropertyList, EqualityTellsTypesSubtypesAndBitsApart )
{
    using Value = __SafeCFPropertyList;
    const std::uint8_t kByte[] = { '1' };
    XMutableArray one;
    one.Append( Value::Integer( 1 ) );
    const std::pair<const char*, Value> kDistinct[] = {
        { "null", {} },
        { "1", Value::Integer( 1 ) },
        { "1.0", Value::Real( 1.0 ) },
        { "0.0", Value::Real( 0.0 ) },
        { "-0.0", Value::Real( -0.0 ) },
        { "NaN", Value::Real( kNaN ) },
        { "another NaN", Value::Real( std::bit_cast<double>( std::bit_cast<std::uint64_t>( kNaN ) + 1 ) ) },
        { "-1", Value::Integer( -1 ) },
        { "2^64-1", XPlistNumber::MakeUnsigned( std::numeric_limits<std::uint64_t>::max() ) },
        { "true", Value::Boolean( true ) },
        { "false", Value::Boolean( false ) },
        { "date", XPlistDate::Make( 1.0 ) },
        { "string", Value::String( u"1" ) },
        { "wide string", Value::String( u"\u0101" ) },
        { "data", XPlistData::Make( kByte ) },
        { "no data", XPlistData::Make( {} ) },
        { "array", one.Seal() },
        { "empty array", XMutableArray().Seal() },
        { "empty dictionary", XMutableDictionary().Seal() },
        { "dictionary", DictionaryWith( Value::Integer( 1 ) ) },
        { "dictionary of another value", DictionaryWith( Value::Integer( 2 ) ) },
    };
    for ( const auto& [nameA, a] : kDistinct )
    {
        for ( const auto& [nameB, b] : kDistinct )
            EXPECT_EQ( a == b, &nameA == &nameB ) << nameA << " and " << nameB;
    }
    EXPECT_TRUE( Value::Real( kNaN ) == Value::Real( kNaN ) );
}

TEST( PropertyList, AValueOfAMillionLevelsIsComparedAndDestroyedOnASmallStack )
{
    // The thread sanitizer needs a minute for a million; the stack is as small for less.
    constexpr int kDepth = AllocationCounter::kWorks ? 1000000 : 100000;
    RunOnSmallStack( [] {
        __SafeCFPropertyList a = DeepValue( kDepth );
        const __SafeCFPropertyList b = DeepValue( kDepth ), shorter = DeepValue( kDepth - 1 );
        EXPECT_TRUE( a == b );
        EXPECT_FALSE( a == shorter );
        a = {};
        EXPECT_TRUE( b == b );
    } );
}

TEST( PropertyList, AnArrayKeepsItsOrderAndDropsNulls )
{
    XMutableArray array;
    for ( int i = 0; i < 1000; ++i )
    {
        array.Append( __SafeCFPropertyList::Integer( i * 1000 ) );
        array.Append( {} );
    }
    const auto sealed = array.Seal();
    ASSERT_EQ( sealed->GetCount(), 1000u );
    for ( std::size_t i = 0; i < 1000; ++i )
        EXPECT_TRUE( sealed->GetValueAt( i ) == __SafeCFPropertyList::Integer( std::int64_t( i ) * 1000 ) );
    EXPECT_FALSE( sealed->GetValueAt( 1000 ) ) << "beyond the end there is only an assertion and null";
    EXPECT_EQ( array.GetCount(), 0u );
}

TEST( PropertyList, NullAndTheEmptyTextDiffer )
{
    const XText null, empty( u"" );
    EXPECT_FALSE( null == empty );
    EXPECT_TRUE( null == XText() and null.IsNull() and not empty.IsNull() );
    EXPECT_TRUE( IsEmpty( null ) and IsEmpty( empty ) and not IsEmpty( XText( u" " ) ) );
    EXPECT_FALSE( null == TextView() ) << "null equals only null";
    EXPECT_TRUE( empty == TextView() );
    EXPECT_FALSE( IsEmpty( __SafeCFPropertyList::Integer( 0 ) ) );
    EXPECT_TRUE( IsEmpty( __SafeCFPropertyList( null ) ) );
    EXPECT_TRUE( IsEmpty( XMutableArray().Seal() ) and IsEmpty( XMutableDictionary().Seal() ) );
    XMutableDictionary dictionary;
    dictionary.Set( null, __SafeCFPropertyList::Integer( 1 ) );
    dictionary.SetText( CFSTR( "Gone" ), null );
    dictionary.SetText( CFSTR( "Kept" ), empty );
    EXPECT_EQ( dictionary.Seal()->GetCount(), 1u );
}

TEST( PropertyList, AnObserverSeesEachKeyThatItsThreadAsksForWhetherItIsThereOrNot )
{
    class Recorder final : public XPlistReadObserver
    {
    public:
        void DidRead( const XPlistDictionary&, const XKey& inKey ) override
        {
            mKeys.insert( std::string( inKey.Name() ) );
        }
        std::set<std::string> mKeys;
    };
    const auto dictionary = DictionaryWith( __SafeCFPropertyList::Integer( 1 ) );
    Recorder outer, inner;
    const XPlistReadObserver::Scope outerScope( outer );
    {
        const XPlistReadObserver::Scope scope( inner );
        EXPECT_TRUE( dictionary->Contains( CFSTR( "Key" ) ) );
        EXPECT_FALSE( dictionary->Contains( CFSTR( "Missing" ) ) );
    }
    std::jthread( [&] { EXPECT_TRUE( dictionary->Contains( CFSTR( "Another" ) ) ); } ).join();
    EXPECT_EQ( dictionary->Find( XText( u"Key" ) ) == nullptr, false );
    EXPECT_EQ( inner.mKeys, ( std::set<std::string>{ "Key", "Missing" } ) );
    EXPECT_EQ( outer.mKeys, ( std::set<std::string>{ "Key" } ) );
}
