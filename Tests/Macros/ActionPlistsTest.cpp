#include "Macros/ActionPlists.h"

#include "Tests/Macros/MacroFixtures.h"

namespace
{
Text XMLOf( const __SafeCFPropertyList& inValue )
{
    return kvr_toXMLString( inValue ).value();
}

class PasteboardWith final : public XPasteboard
{
public:
    bool HasType( TextView inType ) const override { return inType == ActionPlists::kPasteboardType and mHasType; }
    __SafeCFPropertyList GetPropertyList( TextView ) const override { return mValue; }
    std::optional<Text> GetString() const override { return mText; }

    bool mHasType = false;
    __SafeCFPropertyList mValue;
    std::optional<Text> mText;
};

using ActionPlistsTest = MacroWorld;
} // namespace

TEST_F( ActionPlistsTest, TellsActionsFromOtherTexts )
{
    const Text action = XMLOf( ActionDict( u"Pause" ) );
    const struct
    {
        Text mText;
        bool mIsActions;
    } kCases[] = {
        { action, true },
        { XMLOf( Array( { ActionDict( u"Zap" ), Str( u"x" ) } ) ), true }, // whether they load isn't asked
        { u"<dict><key>MacroActionType</key><string>Pause</string></dict>", true },
        { u" " + action, false },
        { XMLOf( Array( {} ) ), false },
        { XMLOf( Array( { Str( u"x" ) } ) ), false },
        { XMLOf( Dict( { { "Name", Str( u"x" ) } } ) ), false },
        { u"<html></html>", false },
        { u"<dict>", false },
        { u"", false },
    };
    for ( const auto& [text, isActions] : kCases )
        EXPECT_EQ( ActionPlists::StringIsActionPlist( text ), isActions ) << UTF8FromText( text );
}

TEST_F( ActionPlistsTest, SaysWhyATextGivesNoActions )
{
    const struct
    {
        Text mText;
        const char16_t* mError;
        HActionList::Index mCount;
    } kCases[] = {
        { u"", u"a script must be specified", 0 },
        { u"nonsense", u"unknown action XML", 0 },
        { XMLOf( Str( u"x" ) ), u"unknown action XML", 0 },
        { XMLOf( Dict( {} ) ), u"incorrect action XML", 0 },
        { XMLOf( ActionDict( u"Zap" ) ), u"incorrect action XML", 0 },
        { XMLOf( ActionDict( u"Pause" ) ), u"", 1 },
        { XMLOf( Array( { ActionDict( u"Pause" ), ActionDict( u"Zap" ), ActionDict( u"Comment" ) } ) ), u"", 2 },
    };
    for ( const auto& [text, expected, count] : kCases )
    {
        HActionList actions;
        Text error;
        const bool hasThem = ActionPlists::GetStringActionPlist( text, actions, error );
        EXPECT_EQ( hasThem, error.empty() );
        EXPECT_EQ( error, expected );
        EXPECT_EQ( actions.GetCount(), count ) << UTF8FromText( text );
        EXPECT_FALSE( MMacroInsertion::CurrentlyInserting() );
    }
}

TEST_F( ActionPlistsTest, ThePasteboardsTypeOfItsOwnComesFirst )
{
    PasteboardWith pasteboard;
    EXPECT_FALSE( ActionPlists::PasteboardHasActions( pasteboard ) );
    EXPECT_FALSE( ActionPlists::PasteboardHasActions( XPasteboard::Absent() ) );
    pasteboard.mText = XMLOf( ActionDict( u"Pause" ) );
    EXPECT_TRUE( ActionPlists::PasteboardHasActions( pasteboard ) );
    HActionList fromText;
    EXPECT_TRUE( ActionPlists::GetPasteboardActions( pasteboard, fromText ) );
    EXPECT_EQ( fromText.GetAction( 0 )->GetActionType(), HActionType::kPause );

    pasteboard.mHasType = true;
    pasteboard.mValue = Array( { ActionDict( u"Comment" ), ActionDict( u"Comment" ) } );
    HActionList fromType;
    EXPECT_TRUE( ActionPlists::GetPasteboardActions( pasteboard, fromType ) );
    EXPECT_EQ( fromType.GetCount(), 2 );
    pasteboard.mValue = nullptr;
    EXPECT_FALSE( ActionPlists::GetPasteboardActions( pasteboard, fromType ) );
    EXPECT_EQ( fromType.GetCount(), 2 );
}
