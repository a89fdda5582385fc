// A part of the screen: one of the screens, a window, or a rectangle. Stored as a dictionary of its own.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Actions/SharedText.h"

enum class ScreenAreaType : std::int32_t {
    kScreenAll,
    kScreenMain,
    kScreenSecond,
    kScreenThird,
    kScreenInternal,
    kScreenExternal,
    kScreenFront,
    kScreenBack,
    kScreenBack2,
    kScreenMouse,
    kScreenIndex,
    kWindowFront,
    kWindowName,
    kWindowNameContaining,
    kWindowNameMatching,
    kWindowIndex,
    kArea,
};
inline constexpr TextView kScreenAreaTypeNames[] = { u"ScreenAll", u"ScreenMain", u"ScreenSecond", u"ScreenThird",
    u"ScreenInternal", u"ScreenExternal", u"ScreenFront", u"ScreenBack", u"ScreenBack2", u"ScreenMouse", u"ScreenIndex",
    u"WindowFront", u"WindowName", u"WindowNameContaining", u"WindowNameMatching", u"WindowIndex", u"Area" };
static_assert( std::size( kScreenAreaTypeNames ) == std::size_t( ScreenAreaType::kArea ) + 1 );
constexpr auto NamesOf( ScreenAreaType )
{
    return std::span( kScreenAreaTypeNames );
}

class HScreenArea
{
public:
    /// Of the area's own dictionary. All fields are always written: who switches the type back finds them.
    void DescribeFields( HFieldVisitor& inVisitor );
    /// As a field of its holder: `area.DescribeIn( inVisitor, "ScreenArea" )`. A value of a wrong type gives the default.
    void DescribeIn( HFieldVisitor& inVisitor, HFieldKey inKey );
    /// The area of a holder that once had its own keys "Source", "Index" and "WindowName". Reading only.
    void ReadOlderKeys( HFieldVisitor& inVisitor );

    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const;
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue );
    [[nodiscard]] ScreenAreaType GetType() const { return mType; }
    void SetType( ScreenAreaType inType ) { mType = inType; }
    /// For descriptions, such as "the Main Screen".
    [[nodiscard]] Text GetDescription() const;
    /// The window's name, when it is meant as a regular expression.
    [[nodiscard]] std::vector<Text> CouldBeRegExStrings() const;

private:
    void AddMatchStrings( StringSearchee& ioSearchee ) const;

    ScreenAreaType mType = ScreenAreaType::kScreenAll;
    XText mWindowName = SharedText<u"">();
    XText mIndex = SharedText<u"2">();
    XText mLeft = SharedText<u"125">();
    XText mTop = SharedText<u"125">();
    XText mWidth = SharedText<u"300">();
    XText mHeight = SharedText<u"300">();
};
