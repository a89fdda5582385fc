#include "Utility/Search/Completions.h"

#include <gtest/gtest.h>

namespace
{
struct KnownNames final : CompletionSource
{
    KnownNames() { Completions::SetSource( this ); }
    ~KnownNames() override { Completions::SetSource( nullptr ); }
    std::vector<Text> VariableNames() const override { return { u"My Rect", u"My Text", u"Sum" }; }
    std::vector<Text> Tokens() const override { return { u"%Calculate%", u"%Variable%" }; }
    std::vector<Text> FunctionCatalogue() const override { return { u"SUM(", u"SIN(", u"MAX(" }; }
    std::vector<Text> CoordinateCompletions() const override { return { u"x", u"y", u"width" }; }
};

// What is replaced and what is offered, the insertion point being at the end.
std::string Completed( FieldKind inKind, TextView inText )
{
    const TextRange range = Completions::RangeForCompletion( inKind, inText, inText.size() );
    EXPECT_EQ( range.End(), inText.size() );
    std::string result = "[" + UTF8FromText( inText.substr( range.mLocation ) ) + "]";
    for ( const Text& text : Completions::ForTextView( inKind, inText, range ) )
        result += " " + UTF8FromText( text );
    return result;
}
} // namespace

TEST( Completions, WhatIsOfferedFollowsFromTheFieldAndTheTextBefore )
{
    const KnownNames names;
    using enum FieldKind;
    const struct
    {
        FieldKind mKind;
        const char16_t* mText;
        const char* mCompleted;
    } kCases[] = {
        { kNone, u"My", "[My]" },
        { kUnset, u"My", "[My]" },
        { kVariable, u"my", "[my] My Rect My Text" },
        { kVariable, u"My ", "[My ] My Rect My Text" },
        { kVariable, u"2", "[2]" },
        { kCalculation, u"2+S", "[S] Sum" },
        { kCalculation, u"2+SU", "[SU] SUM(" },
        { kCalculation, u"2+SUM(", "[SUM(] SUM(" },
        { kCalculation, u"My Rect.", "[] x y width" },
        { kCalculation, u"My Rect . ", "[] x y width" },
        { kCalculation, u"My Rect.w", "[w] width" },
        { kCalculation, u"", "[]" },
        { kToken, u"a %", "[%] %Calculate% %Variable%" },
        { kToken, u"a %cal", "[%cal] %Calculate%" },
        { kToken, u"a %Variable%", "[] My Rect My Text Sum" },
        { kToken, u"a %Variable%My", "[My] My Rect My Text" },
        { kToken, u"%Variable%Variable%", "[] My Rect My Text Sum" },
        { kToken, u"a My", "[My]" },
        { kToken, u"%Calculate%2*SI", "[SI] SIN(" },
        { kToken, u"%Calculate%2*My", "[My] My Rect My Text" },
        { kSearch, u"paste e", "[e] enabled: e: enabled:no e:no" },
        { kSearch, u"app:", "[app:] app:Finder app:" },
    };
    for ( const auto& [kind, text, completed] : kCases )
        EXPECT_EQ( Completed( kind, text ), completed ) << UTF8FromText( text );
}

TEST( Completions, TheInsertionPointEndsTheText )
{
    const KnownNames names;
    EXPECT_EQ( Completions::RangeForCompletion( FieldKind::kVariable, u"My and your", 2 ), ( TextRange{ 0, 2 } ) );
    EXPECT_EQ( Completions::RangeForCompletion( FieldKind::kVariable, u"My", 99 ), ( TextRange{ 0, 2 } ) );
}

TEST( Completions, WithoutASourceOnlySearchesAreOffered )
{
    EXPECT_EQ( Completed( FieldKind::kVariable, u"My" ), "[My]" );
    EXPECT_EQ( Completed( FieldKind::kSearch, u"un" ), "[un] universal:" );
}

TEST( Completions, ACalculationInATextLastsUntilTheNextPercentSign )
{
    constexpr struct
    {
        const char16_t* mText;
        bool mWithin;
    } kCases[] = { { u"a %Calculate%1+", true }, { u"%calculate%", true }, { u"%PastClipboard%2", true },
        { u"%Calculate%1+1%", false }, { u"Calculate%1", false }, { u"", false } };
    for ( const auto& [text, within] : kCases )
        EXPECT_EQ( Completions::WithinCalculate( text ), within ) << UTF8FromText( text );
}

TEST( Completions, KindsHaveNamesAndAreReadByTheirFirstLetter )
{
    using enum FieldKind;
    for ( const FieldKind kind : { kNone, kCalculation, kToken, kVariable, kSearch } )
    {
        EXPECT_EQ( Completions::StringToKind( Completions::KindToString( kind ) ), kind );
        EXPECT_EQ(
            Completions::StringToKind( Text( 1, char16_t( Completions::KindToString( kind )[0] + 32 ) ) ), kind );
    }
    EXPECT_EQ( Completions::KindToString( kUnset ), u"" );
    for ( const char16_t* const text : { u"", u"U", u"x", u"%" } )
        EXPECT_EQ( Completions::StringToKind( text ), kUnset );
}
