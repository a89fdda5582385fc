#include "Macros/ActionPlists.h"

#include "Actions/ActionLimits.h"
#include "Actions/HActionList.h"
#include "Actions/HBaseAction.h"
#include "Macros/MMacroInsertion.h"

#include <algorithm>
#include <exception>

namespace
{
// A pasted text is looked at for each menu that opens: one that can't be actions must cost nothing.
bool LooksLikePropertyList( TextView inText )
{
    constexpr TextView kStarts[] = { u"<?xml", u"<!DOCTYPE", u"<plist", u"<array", u"<dict" };
    return std::ranges::any_of( kStarts, [inText]( TextView start ) { return inText.starts_with( start ); } );
}

bool IsAction( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    return dictionary and dictionary->Contains( CFSTR( "MacroActionType" ) );
}

// An insertion for those who come without one; it ends with the actions that were appended meanwhile, or, when
// something was thrown, with none.
class OwnInsertion
{
public:
    explicit OwnInsertion( HActionList& inList )
        : mList( inList ),
          mCount( inList.GetCount() ),
          mIsOurs( not MMacroInsertion::CurrentlyInserting() )
    {
        if ( mIsOurs )
            MMacroInsertion::Start();
    }
    ~OwnInsertion()
    {
        if ( mIsOurs and MMacroInsertion::CurrentlyInserting() )
            MMacroInsertion::Finish();
    }
    OwnInsertion( const OwnInsertion& ) = delete;
    OwnInsertion& operator=( const OwnInsertion& ) = delete;

    void Finish()
    {
        if ( not mIsOurs )
            return;
        std::vector<HBaseAction*> added;
        HActionList::Index index = 0;
        mList.DoForEveryAction( [&]( HBaseAction& action ) {
            if ( index++ >= mCount )
                added.push_back( &action );
        } );
        MMacroInsertion::Finish( added );
    }

private:
    HActionList& mList;
    HActionList::Index mCount;
    bool mIsOurs;
};

bool AppendAction( const __SafeCFPropertyList& inValue, HActionList& ioActionList, Text& outError )
{
    try
    {
        auto action = HBaseAction::CreateFromPropertyList( inValue );
        if ( not action )
        {
            outError = u"invalid action XML";
            return false;
        }
        ioActionList.AppendAction( std::move( action ) );
        return true;
    }
    catch ( const std::exception& )
    {
        outError = u"incorrect action XML";
        return false;
    }
}

bool AppendArray( const __SafeCFPropertyList& inValue, HActionList& ioActionList, Text& outError )
{
    try
    {
        ioActionList.LoadActionsFromPropertyList( inValue );
        return true;
    }
    catch ( const std::exception& )
    {
        outError = u"incorrect action array XML";
        return false;
    }
}
} // namespace

bool ActionPlists::StringIsActionPlist( TextView inText )
{
    if ( not LooksLikePropertyList( inText ) )
        return false;
    const __SafeCFPropertyList value = kvr_fromXMLString( inText, kActionsPlistLimits );
    if ( const XPlistArray* const array = value.AsArray() )
        return array->GetCount() > 0 and IsAction( __SafeCFPropertyList( array->NodeAt( 0 ) ) );
    return IsAction( value );
}

bool ActionPlists::GetStringActionPlist( TextView inText, HActionList& ioActionList, Text& outError )
{
    if ( inText.empty() )
    {
        outError = u"a script must be specified";
        return false;
    }
    const __SafeCFPropertyList value = kvr_fromXMLString( inText, kActionsPlistLimits );
    if ( not value.AsDictionary() and not value.AsArray() )
    {
        outError = u"unknown action XML";
        return false;
    }
    OwnInsertion insertion( ioActionList );
    const bool hasThem = value.AsDictionary() ? AppendAction( value, ioActionList, outError )
                                              : AppendArray( value, ioActionList, outError );
    insertion.Finish();
    return hasThem;
}

bool ActionPlists::PasteboardHasActions( const XPasteboard& inPasteboard )
{
    if ( inPasteboard.HasType( kPasteboardType ) )
        return true;
    const std::optional<Text> text = inPasteboard.GetString();
    return text and StringIsActionPlist( *text );
}

bool ActionPlists::GetPasteboardActions( const XPasteboard& inPasteboard, HActionList& ioActionList )
{
    const HActionList::Index before = ioActionList.GetCount();
    if ( inPasteboard.HasType( kPasteboardType ) )
    {
        OwnInsertion insertion( ioActionList );
        Text error;
        const __SafeCFPropertyList value = inPasteboard.GetPropertyList( kPasteboardType );
        const bool hasThem = value.AsArray() ? AppendArray( value, ioActionList, error )
                                             : IsAction( value ) and AppendAction( value, ioActionList, error );
        insertion.Finish();
        return hasThem and ioActionList.GetCount() > before;
    }
    const std::optional<Text> text = inPasteboard.GetString();
    Text error;
    return text and StringIsActionPlist( *text ) and GetStringActionPlist( *text, ioActionList, error );
}
