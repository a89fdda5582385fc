// The actions that search a text, and those that replace what they find.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"

/// How a text is searched for a regular expression.
enum class SearchRegExAction { kCaseSensitiveRegEx, kIgnoreCaseRegEx };
inline constexpr TextView kSearchRegExActionNames[] = { u"CaseSensitiveRegEx", u"IgnoreCaseRegEx" };
static_assert( std::size( kSearchRegExActionNames ) == std::size_t( SearchRegExAction::kIgnoreCaseRegEx ) + 1 );
constexpr auto NamesOf( SearchRegExAction )
{
    return std::span( kSearchRegExActionNames );
}

enum class SearchReplaceAction { kCaseSensitiveString, kIgnoreCaseString, kCaseSensitiveRegEx, kIgnoreCaseRegEx };
inline constexpr TextView kSearchReplaceActionNames[] = { u"CaseSensitiveString", u"IgnoreCaseString",
    u"CaseSensitiveRegEx", u"IgnoreCaseRegEx" };
static_assert( std::size( kSearchReplaceActionNames ) == std::size_t( SearchReplaceAction::kIgnoreCaseRegEx ) + 1 );
constexpr auto NamesOf( SearchReplaceAction )
{
    return std::span( kSearchReplaceActionNames );
}

/// What all forms of the search have beside the place that is searched.
struct SearchRegExFields
{
    /// "Action", "Search" and "Captures" are apart, for a clipboard of older forms stands between them.
    void DescribeAction( HFieldVisitor& inVisitor );
    void DescribeSearch( HFieldVisitor& inVisitor );

    SearchRegExAction mAction = SearchRegExAction::kCaseSensitiveRegEx;
    XText mSearch = SharedText<u"">();
    __SafeCFPropertyList mCaptures; // where the groups go, kept as it stands
};

/// Likewise of the replacement.
struct SearchReplaceFields
{
    void DescribeAction( HFieldVisitor& inVisitor );
    void DescribeSearch( HFieldVisitor& inVisitor );

    SearchReplaceAction mAction = SearchReplaceAction::kCaseSensitiveString;
    XText mSearch = SharedText<u"">();
    XText mReplace = SharedText<u"">();
};

class ASearchRegEx final : public HActionOf<ASearchRegEx, HActionType::kSearchRegEx>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override;
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override;

    [[nodiscard]] ActionTextSource& GetSource() { return mSource; }
    void SetFields( const SearchRegExFields& inFields ) { mFields = inFields; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ActionTextSource mSource;
    SearchRegExFields mFields;
};

class ASearchReplace final : public HActionOf<ASearchReplace, HActionType::kSearchReplace>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override;
    /// Nothing while it searches for a plain text.
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override;

    [[nodiscard]] ActionTextSource& GetSource() { return mSource; }
    void SetFields( const SearchReplaceFields& inFields ) { mFields = inFields; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ActionTextSource mSource;
    ActionTextDestination mDestination;
    SearchReplaceFields mFields;
};

// Of older files only, which had a type for each place: reading makes the types above of them.

class ASearchVariable final : public HActionOf<ASearchVariable, HActionType::kSearchVariable>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::unique_ptr<HBaseAction> CleanActionAfterInitialization(
        const XPlistDictionary& inDictionary ) override;

private:
    XText mVariable = SharedText<u"VarName">();
    SearchRegExFields mFields;
};

class ASearchClipboard final : public HActionOf<ASearchClipboard, HActionType::kSearchClipboard>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::unique_ptr<HBaseAction> CleanActionAfterInitialization(
        const XPlistDictionary& inDictionary ) override;

private:
    ClipboardTarget mTarget;
    SearchRegExFields mFields;
};

class ASearchReplaceVariable final : public HActionOf<ASearchReplaceVariable, HActionType::kSearchReplaceVariable>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::unique_ptr<HBaseAction> CleanActionAfterInitialization(
        const XPlistDictionary& inDictionary ) override;

private:
    XText mVariable = SharedText<u"VarName">();
    SearchReplaceFields mFields;
};

class ASearchReplaceClipboard final : public HActionOf<ASearchReplaceClipboard, HActionType::kSearchReplaceClipboard>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::unique_ptr<HBaseAction> CleanActionAfterInitialization(
        const XPlistDictionary& inDictionary ) override;

private:
    ClipboardTarget mTarget;
    SearchReplaceFields mFields;
};
