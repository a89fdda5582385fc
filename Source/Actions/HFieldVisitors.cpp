#include "Actions/HFieldVisitors.h"

#include "Actions/HActionList.h"
#include "CFMethods/PropertyListCodec.h"
#include "Macros/MLoadObserver.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Format.h"
#include "XCAF/XException.h"

#include <algorithm>
#include <cmath>
#include <compare>
#include <type_traits>

// Reading

namespace
{
// Quotes the read that failed, as all required reads do.
[[noreturn]] void ThrowUnread( const HFieldKey& inKey, const char* inRequiredAs )
{
    const Text message = kvr_format( "dictionary->Get( CFSTR(\"%s\"), %s )", inKey.Key().Name(), inRequiredAs );
    throw XException( TextView( message ), __FILE__, __LINE__ );
}

const char* WordFor( const bool& )
{
    return "boolean";
}
const char* WordFor( const std::int32_t& )
{
    return "32-bit integer";
}
const char* WordFor( const std::int64_t& )
{
    return "64-bit integer";
}
const char* WordFor( const double& )
{
    return "number";
}
const char* WordFor( const XText& )
{
    return "string";
}
const char* WordFor( const CFContainer<XPlistData>& )
{
    return "data";
}
const char* WordFor( const __SafeCFPropertyList& )
{
    return "value";
}
} // namespace

template<class AValue>
bool HReadingVisitor::Read( HFieldKey inKey, AValue& ioValue, const char* inRequiredAs )
{
    if ( mDictionary.Get( inKey.Key(), ioValue ) )
        return true;
    if ( inRequiredAs )
        ThrowUnread( inKey, inRequiredAs );
    NoteWrongType( inKey, WordFor( ioValue ), std::is_arithmetic_v<AValue> and not std::is_same_v<AValue, bool> );
    return false;
}

void HReadingVisitor::NoteWrongType( HFieldKey inKey, const char* inExpected, bool inIsNumber ) const
{
    const XPlistNode* found = MLoadObserver::Current() ? mDictionary.Find( inKey.Key() ) : nullptr;
    if ( not found )
        return;
    // A number is read as any other that it fits, so one that isn't taken doesn't fit.
    const bool isNumber = found->GetType() == XPlistType::kNumber and inIsNumber;
    NoteRepair( inKey,
        kvr_format(
            "a value of type %s can't be read as %s; the default stands", NameOf( found->GetType() ), inExpected ),
        isNumber ? MLoadRule::kOutOfRange : MLoadRule::kWrongTypeDefaulted );
}

void HReadingVisitor::NoteRepair( HFieldKey inKey, TextView inReason, MLoadRule inRule ) const
{
    if ( MLoadObserver* observer = MLoadObserver::Current() )
        observer->DidRepair( mDictionary, inKey.Key(), inRule, inReason );
}

void HReadingVisitor::NoteUpgrade( HFieldKey inKey, TextView inReason ) const
{
    if ( MLoadObserver* observer = MLoadObserver::Current() )
        observer->DidUpgradeValue( mDictionary, inKey.Key(), inReason );
}

void HReadingVisitor::NoteOlderKey( HFieldKey inOlder, HFieldKey inCurrent ) const
{
    if ( MLoadObserver* observer = MLoadObserver::Current() )
        observer->DidReadOlderKey( mDictionary, inOlder.Key(), inCurrent.Key() );
}

void HReadingVisitor::Boolean( HFieldKey inKey, bool& ioValue, const HBooleanOptions& inOptions )
{
    if ( Read( inKey, ioValue, nullptr ) )
        return;
    if ( inOptions.mOlderKey.IsSet() and mDictionary.Get( inOptions.mOlderKey.Key(), ioValue ) )
    {
        NoteOlderKey( inOptions.mOlderKey, inKey );
        return;
    }
    ioValue = inOptions.mWhenMissing.value_or( ioValue );
}

void HReadingVisitor::Integer( HFieldKey inKey, std::int32_t& ioValue, const HNumberOptions& inOptions )
{
    Read( inKey, ioValue, inOptions.mRequiredAs );
}

void HReadingVisitor::Integer( HFieldKey inKey, std::int64_t& ioValue, const HNumberOptions& inOptions )
{
    Read( inKey, ioValue, inOptions.mRequiredAs );
}

void HReadingVisitor::Real( HFieldKey inKey, double& ioValue, const HNumberOptions& inOptions )
{
    Read( inKey, ioValue, inOptions.mRequiredAs );
}

void HReadingVisitor::Text( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions )
{
    ReadText( inKey, ioValue, inOptions, false );
}

void HReadingVisitor::Calculation( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions )
{
    ReadText( inKey, ioValue, inOptions, true );
}

void HReadingVisitor::ReadText( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions, bool inOlderIsNumber )
{
    if ( mDictionary.Get( inKey.Key(), ioValue ) )
        return;
    if ( inOptions.mOlderKey.IsSet() and ReadOlderText( inOptions.mOlderKey, inKey, ioValue, inOlderIsNumber ) )
        return;
    Read( inKey, ioValue, inOptions.mRequiredAs ); // for what it says of the failure
    if ( inOptions.mWhenMissing )
        ioValue = XText( *inOptions.mWhenMissing );
}

bool HReadingVisitor::ReadOlderText( HFieldKey inOlder, HFieldKey inCurrent, XText& outValue, bool inIsNumber )
{
    if ( inIsNumber )
    {
        double number = 0;
        if ( not mDictionary.Get( inOlder.Key(), number ) )
            return false;
        outValue = XText( kvr_shortestNumber( number ) );
    }
    else if ( not mDictionary.Get( inOlder.Key(), outValue ) )
        return false;
    NoteOlderKey( inOlder, inCurrent );
    return true;
}

void HReadingVisitor::Variable( HFieldKey inKey, XText& ioValue )
{
    Read( inKey, ioValue, nullptr );
}

void HReadingVisitor::Data( HFieldKey inKey, CFContainer<XPlistData>& ioValue, const HValueOptions& inOptions )
{
    Read( inKey, ioValue, inOptions.mRequiredAs );
}

void HReadingVisitor::Value( HFieldKey inKey, __SafeCFPropertyList& ioValue, const HValueOptions& inOptions )
{
    Read( inKey, ioValue, inOptions.mRequiredAs );
}

void HReadingVisitor::Actions( HFieldKey inListKey, HFieldKey inDisclosedKey, HActions& ioActions )
{
    ioActions.GetList().LoadActionsFromDictionary(
        mDictionary, ioActions.mDisclosed, inListKey.Key(), inDisclosedKey.Key() );
}

void HReadingVisitor::NameIndex(
    HFieldKey inKey, std::size_t& ioIndex, std::span<const TextView> inNames, std::size_t inWhenMissing, XWrite )
{
    const auto* name = __SafeCFPropertyList( mDictionary.Find( inKey.Key() ) ).AsString();
    for ( std::size_t i = 0; name and i < inNames.size(); ++i )
    {
        if ( name->Equals( inNames[i] ) )
        {
            ioIndex = i;
            return;
        }
    }
    ioIndex = inWhenMissing;
    if ( MLoadObserver::Current() and HasKey( inKey ) )
        NoteRepair( inKey,
            name ? kvr_format( u"“%@” is no name that this key knows; %@ stands", name->GetText(), inNames[ioIndex] )
                 : kvr_format( u"isn't a string; %@ stands", inNames[ioIndex] ),
            name ? MLoadRule::kEnumDefaulted : MLoadRule::kWrongTypeDefaulted );
}

// Saving

void HSavingVisitor::Boolean( HFieldKey inKey, bool& ioValue, const HBooleanOptions& inOptions )
{
    if ( inOptions.mWrite == XWrite::kAlways or ( inOptions.mWrite == XWrite::kWhenSet and ioValue ) )
        mDictionary.SetBoolean( inKey.Key(), ioValue );
}

void HSavingVisitor::Integer( HFieldKey inKey, std::int32_t& ioValue, const HNumberOptions& inOptions )
{
    std::int64_t value = ioValue;
    Integer( inKey, value, inOptions );
}

void HSavingVisitor::Integer( HFieldKey inKey, std::int64_t& ioValue, const HNumberOptions& inOptions )
{
    if ( inOptions.mWrite == XWrite::kAlways or ( inOptions.mWrite == XWrite::kWhenSet and ioValue != 0 ) )
        mDictionary.SetInteger( inKey.Key(), ioValue );
}

void HSavingVisitor::Real( HFieldKey inKey, double& ioValue, const HNumberOptions& inOptions )
{
    if ( inOptions.mWrite == XWrite::kAlways or ( inOptions.mWrite == XWrite::kWhenSet and ioValue != 0 ) )
        mDictionary.SetReal( inKey.Key(), ioValue );
}

void HSavingVisitor::Text( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions )
{
    if ( inOptions.mWrite == XWrite::kAlways or ( inOptions.mWrite == XWrite::kWhenSet and not ioValue.IsEmpty() ) )
        mDictionary.SetText( inKey.Key(), ioValue );
}

void HSavingVisitor::Calculation( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions )
{
    Text( inKey, ioValue, inOptions );
}

void HSavingVisitor::Variable( HFieldKey inKey, XText& ioValue )
{
    if ( ioValue.IsNull() )
        mDictionary.SetText( inKey.Key(), TextView() );
    else
        mDictionary.SetText( inKey.Key(), ioValue );
}

void HSavingVisitor::Data( HFieldKey inKey, CFContainer<XPlistData>& ioValue, const HValueOptions& inOptions )
{
    if ( ioValue and inOptions.mWrite != XWrite::kNever )
        mDictionary.Set( inKey.Key(), ioValue );
}

void HSavingVisitor::Value( HFieldKey inKey, __SafeCFPropertyList& ioValue, const HValueOptions& inOptions )
{
    if ( ioValue and inOptions.mWrite != XWrite::kNever )
        mDictionary.Set( inKey.Key(), ioValue );
}

void HSavingVisitor::Actions( HFieldKey inListKey, HFieldKey inDisclosedKey, HActions& ioActions )
{
    ioActions.GetList().SaveToDictionary( mDictionary, ioActions.mDisclosed, inListKey.Key(), inDisclosedKey.Key() );
}

namespace
{
// Names stand in tables that never go, and are written by the hundred thousand: each is made once, as one of the
// strings that everything shares.
const XText& StringOfName( TextView inName )
{
    static thread_local std::vector<XText> remembered( 1024 );
    XText& text = remembered[( reinterpret_cast<std::uintptr_t>( inName.data() ) >> 1 ) % remembered.size()];
    if ( not text.Equals( inName ) )
        text = XPlistString::Intern( XPlistString::Make( inName ) );
    return text;
}
} // namespace

void HSavingVisitor::NameIndex(
    HFieldKey inKey, std::size_t& ioIndex, std::span<const TextView> inNames, std::size_t, XWrite inWrite )
{
    if ( ioIndex < inNames.size() and
        ( inWrite == XWrite::kAlways or ( inWrite == XWrite::kWhenSet and ioIndex != 0 ) ) )
        mDictionary.SetText( inKey.Key(), StringOfName( inNames[ioIndex] ) );
}

// Comparing

void HComparingVisitor::Boolean( HFieldKey, bool& ioValue, const HBooleanOptions& )
{
    mValues.emplace_back( std::int64_t( ioValue ) );
}

void HComparingVisitor::Integer( HFieldKey, std::int32_t& ioValue, const HNumberOptions& )
{
    mValues.emplace_back( std::int64_t( ioValue ) );
}

void HComparingVisitor::Integer( HFieldKey, std::int64_t& ioValue, const HNumberOptions& )
{
    mValues.emplace_back( ioValue );
}

void HComparingVisitor::Real( HFieldKey, double& ioValue, const HNumberOptions& )
{
    mValues.emplace_back( ioValue );
}

void HComparingVisitor::Text( HFieldKey, XText& ioValue, const HTextOptions& )
{
    mValues.emplace_back( ioValue );
}

void HComparingVisitor::Calculation( HFieldKey, XText& ioValue, const HTextOptions& )
{
    mValues.emplace_back( ioValue );
}

void HComparingVisitor::Variable( HFieldKey, XText& ioValue )
{
    mValues.emplace_back( ioValue );
}

void HComparingVisitor::Data( HFieldKey, CFContainer<XPlistData>& ioValue, const HValueOptions& )
{
    mValues.emplace_back( __SafeCFPropertyList( ioValue ) );
}

void HComparingVisitor::Value( HFieldKey, __SafeCFPropertyList& ioValue, const HValueOptions& )
{
    mValues.emplace_back( ioValue );
}

void HComparingVisitor::Actions( HFieldKey, HFieldKey, HActions& ioActions )
{
    mValues.emplace_back( __SafeCFPropertyList( ioActions.GetList().CopyActionsToPropertyList() ) );
    mValues.emplace_back( std::int64_t( ioActions.mDisclosed ) );
}

void HComparingVisitor::NameIndex( HFieldKey, std::size_t& ioIndex, std::span<const TextView>, std::size_t, XWrite )
{
    mValues.emplace_back( std::int64_t( ioIndex ) );
}

namespace
{
int Sign( std::strong_ordering inOrder )
{
    return inOrder < 0 ? -1 : inOrder > 0;
}

// A total order, so that NaN is equal to itself.
int CompareReals( double inFirst, double inSecond )
{
    return Sign( std::strong_order( inFirst, inSecond ) );
}

int CompareTexts( const XPlistString* inFirst, const XPlistString* inSecond )
{
    if ( not inFirst or not inSecond )
        return int( inFirst != nullptr ) - int( inSecond != nullptr );
    const int order = inFirst->Compare( *inSecond );
    return order < 0 ? -1 : order > 0;
}

int CompareBytes( std::span<const std::uint8_t> inFirst, std::span<const std::uint8_t> inSecond )
{
    return Sign(
        std::lexicographical_compare_three_way( inFirst.begin(), inFirst.end(), inSecond.begin(), inSecond.end() ) );
}
} // namespace

int HComparingVisitor::CompareValues( const HComparingVisitor& inFirst, const HComparingVisitor& inSecond )
{
    const std::size_t shared = std::min( inFirst.mValues.size(), inSecond.mValues.size() );
    for ( std::size_t i = 0; i < shared; ++i )
    {
        const Taken& first = inFirst.mValues[i];
        const Taken& second = inSecond.mValues[i];
        int order = Sign( first.index() <=> second.index() );
        if ( order != 0 )
            return order;
        if ( const auto* number = std::get_if<std::int64_t>( &first ) )
            order = Sign( *number <=> std::get<std::int64_t>( second ) );
        else if ( const auto* real = std::get_if<double>( &first ) )
            order = CompareReals( *real, std::get<double>( second ) );
        else if ( const auto* text = std::get_if<XText>( &first ) )
            order = CompareTexts( text->GetString().GetCFRef(), std::get<XText>( second ).GetString().GetCFRef() );
        else
            order = kvr_comparePropertyLists(
                std::get<__SafeCFPropertyList>( first ), std::get<__SafeCFPropertyList>( second ) );
        if ( order != 0 )
            return order;
    }
    return Sign( inFirst.mValues.size() <=> inSecond.mValues.size() );
}

int kvr_comparePropertyLists( const __SafeCFPropertyList& inFirst, const __SafeCFPropertyList& inSecond )
{
    if ( inFirst.Equals( inSecond ) )
        return 0;
    if ( not inFirst or not inSecond )
        return inFirst ? 1 : -1;
    // The bytes are a total order over values, and their writer doesn't recurse.
    const XBytes first = WriteBinaryPropertyList( inFirst );
    const XBytes second = WriteBinaryPropertyList( inSecond );
    return CompareBytes( first.Span(), second.Span() );
}

// Collecting

void HCollectingVisitor::Text( HFieldKey, XText& ioValue, const HTextOptions& inOptions )
{
    if ( inOptions.mWrite == XWrite::kNever )
        return;
    if ( inOptions.mIsUID )
        mSearchee.AddUID( ioValue );
    else
        mSearchee.Add( ioValue );
}

void HCollectingVisitor::Calculation( HFieldKey, XText& ioValue, const HTextOptions& )
{
    mSearchee.Add( ioValue );
}

void HCollectingVisitor::Variable( HFieldKey, XText& ioValue )
{
    mSearchee.Add( ioValue );
}

// Not by recursion: the value may be nested as deep as files are.
void HCollectingVisitor::Value( HFieldKey, __SafeCFPropertyList& ioValue, const HValueOptions& inOptions )
{
    std::vector<const XPlistNode*> waiting;
    if ( inOptions.mIsSearched and ioValue )
        waiting.push_back( ioValue.GetNode() );
    while ( not waiting.empty() )
    {
        const __SafeCFPropertyList value( waiting.back() );
        waiting.pop_back();
        if ( const XPlistString* text = value.AsString() )
            mSearchee.Add( text->GetText() );
        // Turned about, for the last one that waits is the next to be looked at.
        else if ( const XPlistArray* array = value.AsArray() )
            waiting.insert( waiting.end(), array->Nodes().rbegin(), array->Nodes().rend() );
        else if ( const XPlistDictionary* dictionary = value.AsDictionary() )
        {
            const auto entries = dictionary->GetEntries();
            for ( auto entry = entries.rbegin(); entry != entries.rend(); ++entry )
                waiting.push_back( entry->mValue );
        }
    }
}

Text kvr_shortestNumber( double inNumber )
{
    if ( not std::isfinite( inNumber ) )
        return u"0";
    Text text = kvr_format( "%.8f", inNumber );
    text.erase( text.find_last_not_of( u'0' ) + 1 );
    if ( text.back() == u'.' )
        text.pop_back();
    return text == u"-0" ? Text( u"0" ) : text;
}
