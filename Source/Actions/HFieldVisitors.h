// The visitors over the lists of fields: one fills a fresh object from a dictionary, one writes an object
// into a dictionary, one orders two objects, one collects what can be searched. Each lives for one call.
#pragma once

#include "Actions/HFieldVisitor.h"

#include <variant>
#include <vector>

/// Throws XException for a required key without a usable value; its message quotes the read. What it
/// read from older keys, or set right, it tells the load observer, if there is one.
class HReadingVisitor final : public HFieldVisitor
{
public:
    explicit HReadingVisitor( const XPlistDictionary& inDictionary ) : mDictionary( inDictionary ) {}

    void Boolean( HFieldKey inKey, bool& ioValue, const HBooleanOptions& inOptions ) override;
    void Integer( HFieldKey inKey, std::int32_t& ioValue, const HNumberOptions& inOptions ) override;
    void Integer( HFieldKey inKey, std::int64_t& ioValue, const HNumberOptions& inOptions ) override;
    void Real( HFieldKey inKey, double& ioValue, const HNumberOptions& inOptions ) override;
    void Text( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions ) override;
    void Calculation( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions ) override;
    void Variable( HFieldKey inKey, XText& ioValue ) override;
    void Data( HFieldKey inKey, CFContainer<XPlistData>& ioValue, const HValueOptions& inOptions ) override;
    void Value( HFieldKey inKey, __SafeCFPropertyList& ioValue, const HValueOptions& inOptions ) override;
    void Actions( HFieldKey inListKey, HFieldKey inDisclosedKey, HActions& ioActions ) override;

    [[nodiscard]] bool IsReading() const override { return true; }
    [[nodiscard]] bool HasKey( HFieldKey inKey ) const override { return mDictionary.Contains( inKey.Key() ); }
    void NoteRepair( HFieldKey inKey, TextView inReason, MLoadRule inRule = MLoadRule::kValueCorrected ) const override;
    void NoteUpgrade( HFieldKey inKey, TextView inReason ) const override;
    void NoteOlderKey( HFieldKey inOlder, HFieldKey inCurrent ) const override;

private:
    void NameIndex( HFieldKey inKey, std::size_t& ioIndex, std::span<const TextView> inNames, std::size_t inWhenMissing,
        XWrite inWrite ) override;
    template<class AValue>
    bool Read( HFieldKey inKey, AValue& ioValue, const char* inRequiredAs );
    void ReadText( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions, bool inOlderIsNumber );
    bool ReadOlderText( HFieldKey inOlder, HFieldKey inCurrent, XText& outValue, bool inIsNumber );
    void NoteWrongType( HFieldKey inKey, const char* inExpected, bool inIsNumber ) const;

    const XPlistDictionary& mDictionary;
};

class HSavingVisitor final : public HFieldVisitor
{
public:
    explicit HSavingVisitor( XMutableDictionary& ioDictionary ) : mDictionary( ioDictionary ) {}

    void Boolean( HFieldKey inKey, bool& ioValue, const HBooleanOptions& inOptions ) override;
    void Integer( HFieldKey inKey, std::int32_t& ioValue, const HNumberOptions& inOptions ) override;
    void Integer( HFieldKey inKey, std::int64_t& ioValue, const HNumberOptions& inOptions ) override;
    void Real( HFieldKey inKey, double& ioValue, const HNumberOptions& inOptions ) override;
    void Text( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions ) override;
    void Calculation( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions ) override;
    void Variable( HFieldKey inKey, XText& ioValue ) override;
    void Data( HFieldKey inKey, CFContainer<XPlistData>& ioValue, const HValueOptions& inOptions ) override;
    void Value( HFieldKey inKey, __SafeCFPropertyList& ioValue, const HValueOptions& inOptions ) override;
    void Actions( HFieldKey inListKey, HFieldKey inDisclosedKey, HActions& ioActions ) override;

    [[nodiscard]] bool IsSaving() const override { return true; }

private:
    void NameIndex( HFieldKey inKey, std::size_t& ioIndex, std::span<const TextView> inNames, std::size_t inWhenMissing,
        XWrite inWrite ) override;

    XMutableDictionary& mDictionary;
};

/// Takes down the values of one object, then those of a second one of the same type.
class HComparingVisitor final : public HFieldVisitor
{
public:
    /// Negative, 0 or positive: the first field that differs decides.
    template<class AnObject>
    [[nodiscard]] static int Compare( const AnObject& inFirst, const AnObject& inSecond )
    {
        HComparingVisitor first, second; // neither writes to a member
        const_cast<AnObject&>( inFirst ).DescribeFields( first );
        const_cast<AnObject&>( inSecond ).DescribeFields( second );
        return CompareValues( first, second );
    }

    void Boolean( HFieldKey inKey, bool& ioValue, const HBooleanOptions& inOptions ) override;
    void Integer( HFieldKey inKey, std::int32_t& ioValue, const HNumberOptions& inOptions ) override;
    void Integer( HFieldKey inKey, std::int64_t& ioValue, const HNumberOptions& inOptions ) override;
    void Real( HFieldKey inKey, double& ioValue, const HNumberOptions& inOptions ) override;
    void Text( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions ) override;
    void Calculation( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions ) override;
    void Variable( HFieldKey inKey, XText& ioValue ) override;
    void Data( HFieldKey inKey, CFContainer<XPlistData>& ioValue, const HValueOptions& inOptions ) override;
    void Value( HFieldKey inKey, __SafeCFPropertyList& ioValue, const HValueOptions& inOptions ) override;
    void Actions( HFieldKey inListKey, HFieldKey inDisclosedKey, HActions& ioActions ) override;

private:
    using Taken = std::variant<std::int64_t, double, XText, __SafeCFPropertyList>;

    void NameIndex( HFieldKey inKey, std::size_t& ioIndex, std::span<const TextView> inNames, std::size_t inWhenMissing,
        XWrite inWrite ) override;
    [[nodiscard]] static int CompareValues( const HComparingVisitor& inFirst, const HComparingVisitor& inSecond );

    std::vector<Taken> mValues;
};

/// Offers the texts of an object to a search: those of texts, calculations, variables and searched values; and what
/// other parts add to Searchee() themselves.
class HCollectingVisitor final : public HFieldVisitor
{
public:
    explicit HCollectingVisitor( StringSearchee& ioSearchee ) : mSearchee( ioSearchee ) {}

    void Boolean( HFieldKey, bool&, const HBooleanOptions& ) override {}
    void Integer( HFieldKey, std::int32_t&, const HNumberOptions& ) override {}
    void Integer( HFieldKey, std::int64_t&, const HNumberOptions& ) override {}
    void Real( HFieldKey, double&, const HNumberOptions& ) override {}
    void Text( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions ) override;
    void Calculation( HFieldKey inKey, XText& ioValue, const HTextOptions& inOptions ) override;
    void Variable( HFieldKey inKey, XText& ioValue ) override;
    void Data( HFieldKey, CFContainer<XPlistData>&, const HValueOptions& ) override {}
    void Value( HFieldKey inKey, __SafeCFPropertyList& ioValue, const HValueOptions& inOptions ) override;
    void Actions( HFieldKey, HFieldKey, HActions& ) override {} // found as sub-actions

    [[nodiscard]] StringSearchee* Searchee() override { return &mSearchee; }

private:
    void NameIndex( HFieldKey, std::size_t&, std::span<const TextView>, std::size_t, XWrite ) override {}

    StringSearchee& mSearchee;
};

/// The shortest text of a number as it stood in an older file: no decimals for a whole number, at most
/// eight otherwise, no trailing zeros, a point whatever the locale.
[[nodiscard]] Text kvr_shortestNumber( double inNumber );

/// A value's total order: by type, then by content; dictionaries and arrays by their elements.
[[nodiscard]] int kvr_comparePropertyLists( const __SafeCFPropertyList& inFirst, const __SafeCFPropertyList& inSecond );
