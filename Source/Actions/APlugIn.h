// The one action that stands for all plug-ins, each of which is a folder that a user installed
// (PlugInFolder.h). Its information file is a stranger's: what can't be used there is logged and reads as
// absent, and stops nothing. An action whose plug-in is gone keeps its parameters. Main thread.
#pragma once

#include "Actions/ActionResult.h"
#include "Actions/ScriptActions.h"

#include <filesystem>

/// The types of parameter, by the names that information files hold.
enum class PlugInParameterType : std::int32_t {
    kInvalid,
    kString,
    kTokenString,
    kCalculation,
    kText,
    kTokenText,
    kCheckbox,
    kPopupMenu,
    kHidden, ///< the user can't change it, and neither can a macros file
};
inline constexpr TextView kInformationParameterTypesNames[] = { u"INVALID", u"String", u"TokenString", u"Calculation",
    u"Text", u"TokenText", u"Checkbox", u"PopupMenu", u"Hidden" };
static_assert( std::size( kInformationParameterTypesNames ) == std::size_t( PlugInParameterType::kHidden ) + 1 );
constexpr auto NamesOf( PlugInParameterType )
{
    return std::span( kInformationParameterTypesNames );
}

class APlugIn final : public HActionOf<APlugIn, HActionType::kPlugIn, AExecuteRootScript>
{
public:
    /// Of no plug-in, as before reading.
    APlugIn() = default;
    /// A new action of the plug-in, with the defaults that it gives.
    explicit APlugIn( const XText& inFolderName );

    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void InitializeFromDictionary( const XPlistDictionary& inDictionary ) override;
    void UpdateToDefaultValues( bool inFlag ) override { mResult.UpdateToDefaultValues( inFlag ); }
    /// Gives each parameter that has no value its default, and each hidden one in any case.
    void UpdateToDefaults();

    [[nodiscard]] bool HasTimeOut() const override;
    [[nodiscard]] double DefaultTimeOutPeriod() const override;
    [[nodiscard]] Text GetNewActionTitle() const override;
    [[nodiscard]] std::optional<Text> GetToolTip() const override;

    [[nodiscard]] const XText& GetFolderName() const { return mFolderName; }
    /// The value, null when there is none or it is no string. The label must be a valid variable name.
    [[nodiscard]] XText GetParameterValue( const XText& inLabel ) const;
    void SetParameterValue( const XText& inLabel, const XText& inValue );

    // What the information file says; null or absent for what is missing or can't be used.

    [[nodiscard]] XText GetInformationKeyedString( const XKey& inKey ) const;
    [[nodiscard]] std::optional<double> GetInformationKeyedNumber( const XKey& inKey ) const;
    /// The path of a file of the plug-in's. A name that could lead out of its folder is refused.
    [[nodiscard]] std::optional<std::filesystem::path> GetInformationKeyedFile( const XKey& inKey ) const;
    [[nodiscard]] XText GetInformationName() const;
    /// A token text.
    [[nodiscard]] XText GetInformationTitle() const;
    [[nodiscard]] std::optional<std::filesystem::path> GetInformationIcon() const;
    [[nodiscard]] CFContainer<XPlistArray> GetInformationParameters() const;
    [[nodiscard]] std::size_t GetInformationParameterCount() const;
    /// Indexes count from 0; null beyond the end.
    [[nodiscard]] CFContainer<XPlistDictionary> GetInformationParameterEntry( std::size_t inIndex ) const;
    [[nodiscard]] XText GetInformationParameterEntryLabel( std::size_t inIndex ) const;
    [[nodiscard]] PlugInParameterType GetInformationParameterEntryType( std::size_t inIndex ) const;
    [[nodiscard]] XText GetInformationParameterEntryDefault( std::size_t inIndex ) const;
    [[nodiscard]] XText GetInformationParameterEntryMenu( std::size_t inIndex ) const;

    [[nodiscard]] ActionDisplayKind GetInformationDefaultDisplayKind() const;
    /// A kind is allowed when its name stands anywhere in "Results", within a longer word too.
    [[nodiscard]] bool IsAllowedDisplayKind( ActionDisplayKind inKind ) const;
    [[nodiscard]] std::size_t CountAllowedDisplayKind() const;
    /// Is there a choice, or one kind that is worth telling?
    [[nodiscard]] bool ShouldDisplayKind() const;

    /// Expands a title; the context has the action's parameters under "Parameters".
    using TokenTextGetResult = Text ( * )( TextView inTitle, const XPlistDictionary& inContext );
    /// Whoever knows token texts installs itself; null, as at first, shows titles as they stand. Main thread.
    static void SetTokenText( TokenTextGetResult inGetResult );

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    [[nodiscard]] CFContainer<XPlistDictionary> Information() const;
    [[nodiscard]] XText EntryText( std::size_t inIndex, const XKey& inKey ) const;
    void DescribeParameters( HFieldVisitor& inVisitor );
    void DescribeResult( HFieldVisitor& inVisitor, ActionDisplayKind inDefaultKind );

    XText mFolderName = SharedText<u"">();
    CFContainer<XPlistDictionary> mParameters = XMutableDictionary().Seal(); // by label; never null
    ActionResult mResult;
    bool mTrimResults = true;
    bool mIncludeStdErr = true;
};
