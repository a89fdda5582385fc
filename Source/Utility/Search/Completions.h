// The completion lists of text fields: what stands to be completed at the insertion point, and what is offered
// for it. The variables, tokens and functions come from whoever knows them. Main thread.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Text/TextRange.h"

#include <span>
#include <vector>

/// What a field holds.
enum class FieldKind { kUnset, kNone, kCalculation, kToken, kVariable, kSearch };

inline constexpr TextView kFieldKindNames[] = { u"", u"None", u"Calculation", u"Token", u"Variable", u"Search" };
static_assert( std::size( kFieldKindNames ) == std::size_t( FieldKind::kSearch ) + 1 );

/// What the languages know and the fields offer. Names are whole and in the order in which they are shown.
class CompletionSource
{
public:
    virtual ~CompletionSource() = default;
    /// The variables that belong to no running macro.
    [[nodiscard]] virtual std::vector<Text> VariableNames() const = 0;
    /// With their percent signs.
    [[nodiscard]] virtual std::vector<Text> Tokens() const = 0;
    /// The functions of calculations.
    [[nodiscard]] virtual std::vector<Text> FunctionCatalogue() const = 0;
    /// What may follow a variable and a dot.
    [[nodiscard]] virtual std::vector<Text> CoordinateCompletions() const = 0;
};

class Completions
{
public:
    /// Not owned; null for a source that knows nothing, as before any was set.
    static void SetSource( const CompletionSource* inSource );

    /// What to offer when the range is completed; RangeForCompletion gives the range. Only what goes on as the range
    /// begins, without regard to case.
    [[nodiscard]] static std::vector<Text> ForTextView( FieldKind inKind, TextView inText, TextRange inRange );
    /// What a completion replaces: it ends at the insertion point, and may be empty.
    [[nodiscard]] static TextRange RangeForCompletion(
        FieldKind inKind, TextView inText, std::size_t inInsertionPoint );
    /// Does the text end in a calculation within a text with tokens?
    [[nodiscard]] static bool WithinCalculate( TextView inTextBefore );

    [[nodiscard]] static TextView KindToString( FieldKind inKind );
    /// By the first letter in either case, "U" standing for unset; everything else is unset too.
    [[nodiscard]] static FieldKind StringToKind( TextView inText );
};
