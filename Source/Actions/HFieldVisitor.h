// The one list of fields of an action, condition, collection or trigger. A type states each of its
// fields once, in DescribeFields; reading, saving and comparing (HFieldVisitors.h) are visitors over
// that statement. The value that a member has in a new object is the default of an absent, unknown
// or ill-typed value; a row says more only where that differs.
//
// A field that depends on another is a plain `if` after the row that it depends on: when a reading
// visitor comes to the `if`, the member already holds the file's value.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Macros/MLoadRules.h"

#include <concepts>
#include <optional>
#include <span>

class HActions;
class StringSearchee;

/// The key of a row: a literal, hashed at compile time. Owns nothing.
class HFieldKey
{
public:
    constexpr HFieldKey() = default;
    template<std::size_t kSize>
    consteval HFieldKey( const char ( &inLiteral )[kSize] ) : mKey( std::string_view( inLiteral, kSize - 1 ) )
    {}
    /// A key made at run time, out of the prefix of a shared part.
    explicit HFieldKey( const XKey& inKey ) : mKey( inKey ) {}

    [[nodiscard]] const XKey& Key() const { return mKey; }
    [[nodiscard]] bool IsSet() const { return not mKey.Name().empty(); }

private:
    XKey mKey{ std::string_view() };
};

enum class XWrite : std::uint8_t {
    kAlways,
    kWhenSet, ///< not for false, 0, an empty text, the first name of a table, null data
    kNever,   ///< an older key that only reading knows
};

struct HBooleanOptions
{
    std::optional<bool> mWhenMissing = {}; ///< an absent or ill-typed value; otherwise the member stays
    HFieldKey mOlderKey = {};              ///< read second, never written
    XWrite mWrite = XWrite::kAlways;
};

struct HNumberOptions
{
    const char* mRequiredAs = nullptr; ///< throws without it; the name that the message quotes
    XWrite mWrite = XWrite::kAlways;
};

struct HTextOptions
{
    std::optional<TextView> mWhenMissing = {};
    HFieldKey mOlderKey = {}; ///< of a text; of a calculation the number that it once was
    const char* mRequiredAs = nullptr;
    bool mIsUID = false; ///< the identity of a macro or group: found as such, not as a text
    XWrite mWrite = XWrite::kAlways;
};

template<class Enumeration>
struct HNameOptions
{
    std::optional<Enumeration> mWhenMissing = {};
    XWrite mWrite = XWrite::kAlways;
};

/// What a row of stored property-list values says.
struct HValueOptions
{
    const char* mRequiredAs = nullptr;
    bool mIsSearched = false; ///< the texts within it, however they are nested, are found by a search
    XWrite mWrite = XWrite::kWhenSet;
};

/// An enumeration with a table of its stored names beside it, found by `NamesOf( value )`.
template<class Enumeration>
concept HNamed = requires( Enumeration inValue )
{
    {
        NamesOf( inValue )
        } -> std::convertible_to<std::span<const TextView>>;
};

/// The stored name of a value.
template<HNamed Enumeration>
[[nodiscard]] constexpr TextView StoredName( Enumeration inValue )
{
    return NamesOf( inValue )[std::size_t( inValue )];
}

class HFieldVisitor
{
public:
    virtual ~HFieldVisitor() = default;

    virtual void Boolean( HFieldKey inKey, bool& ioValue, const HBooleanOptions& inOptions = {} ) = 0;
    virtual void Integer( HFieldKey inKey, std::int32_t& ioValue, const HNumberOptions& inOptions = {} ) = 0;
    virtual void Integer( HFieldKey inKey, std::int64_t& ioValue, const HNumberOptions& inOptions = {} ) = 0;
    virtual void Real( HFieldKey inKey, double& ioValue, const HNumberOptions& inOptions = {} ) = 0;
    virtual void Text( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions = {} ) = 0;
    /// A text that is a calculation. Its older key held a plain number, which becomes the shortest text.
    virtual void Calculation( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions = {} ) = 0;
    /// A variable's name: always written, "" for null.
    virtual void Variable( HFieldKey inKey, XText& ioValue ) = 0;
    virtual void Data( HFieldKey inKey, CFContainer<XPlistData>& ioValue, const HValueOptions& inOptions = {} ) = 0;
    /// Any value, kept as it stands.
    virtual void Value( HFieldKey inKey, __SafeCFPropertyList& ioValue, const HValueOptions& inOptions = {} ) = 0;
    /// A list of actions, and whether its display is opened out, which is only written when it isn't.
    virtual void Actions( HFieldKey inListKey, HFieldKey inDisclosedKey, HActions& ioActions ) = 0;

    /// One of the stored names of an enumeration.
    template<HNamed Enumeration>
    void Name( HFieldKey inKey, Enumeration& ioValue, const HNameOptions<Enumeration>& inOptions = {} )
    {
        auto index = std::size_t( ioValue );
        NameIndex( inKey, index, NamesOf( ioValue ), std::size_t( inOptions.mWhenMissing.value_or( ioValue ) ),
            inOptions.mWrite );
        if ( index != std::size_t( ioValue ) ) // a saving visitor writes to no member
            ioValue = Enumeration( index );
    }

    /// One of the stored names, not written while it is the given one, which is also what an absent key means.
    template<HNamed Enumeration>
    void NameUnless( HFieldKey inKey, Enumeration& ioValue, Enumeration inUnwritten )
    {
        Name( inKey, ioValue,
            { .mWhenMissing = inUnwritten,
                .mWrite = ioValue == inUnwritten and not IsReading() ? XWrite::kNever : XWrite::kAlways } );
    }

    /// A shared part whose keys begin with a prefix.
    template<class APart>
    void Part( std::string_view inPrefix, APart& ioPart )
    {
        ioPart.DescribeFields( *this, inPrefix );
    }
    /// A shared part that has a dictionary of its own under the key. It converts itself, by the
    /// CopyToPropertyList and LoadFromPropertyList of such values.
    template<class AValue>
    void Converted( HFieldKey inKey, AValue& ioValue, const HValueOptions& inOptions = {} )
    {
        if ( Searchee() ) // whoever holds such a value says what can be found in it
            return;
        if ( not IsReading() )
        {
            __SafeCFPropertyList value = ioValue.CopyToPropertyList();
            Value( inKey, value, inOptions );
            return;
        }
        __SafeCFPropertyList value;
        Value( inKey, value, inOptions );
        if ( value )
            ioValue.LoadFromPropertyList( value );
    }

    /// Does this visitor fill the members?
    [[nodiscard]] virtual bool IsReading() const { return false; }
    /// Does this visitor write the members into a file?
    [[nodiscard]] virtual bool IsSaving() const { return false; }
    /// Where this visitor collects what a search can find; null for those that don't. Texts, calculations and variables
    /// go there by themselves.
    [[nodiscard]] virtual StringSearchee* Searchee() { return nullptr; }
    /// Reading only: is the key there, whatever its value?
    [[nodiscard]] virtual bool HasKey( HFieldKey ) const { return false; }
    /// Reading only: the value of a key was set right by whoever described it.
    virtual void NoteRepair( HFieldKey, TextView, MLoadRule = MLoadRule::kValueCorrected ) const {}
    /// Reading only: the value of a key has an earlier form, of which nothing is lost.
    virtual void NoteUpgrade( HFieldKey, TextView ) const {}
    /// Reading only: an older key was read by whoever described the field.
    virtual void NoteOlderKey( HFieldKey, HFieldKey ) const {}

private:
    virtual void NameIndex( HFieldKey inKey, std::size_t& ioIndex, std::span<const TextView> inNames,
        std::size_t inWhenMissing, XWrite inWrite ) = 0;
};
