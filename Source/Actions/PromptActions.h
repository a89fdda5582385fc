// The actions that ask the user.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"

enum class PromptWindowWidth : std::int32_t {
    kAutomatic,
    kNarrow,
    kNormal,
    kWide,
};
inline constexpr TextView kPromptWindowWidthNames[] = { u"Automatic", u"Narrow", u"Normal", u"Wide" };
static_assert( std::size( kPromptWindowWidthNames ) == std::size_t( PromptWindowWidth::kWide ) + 1 );
constexpr auto NamesOf( PromptWindowWidth )
{
    return std::span( kPromptWindowWidthNames );
}

class APromptWithList final : public HActionOf<APromptWithList, HActionType::kPromptWithList>
{
public:
    APromptWithList();
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override { mSource.UpdateToDefaultValues( inFlag ); }
    /// What is remembered of a prompt goes by its UID, so that a copy must have its own.
    void UpdateForPasteOrAdd() override;

    [[nodiscard]] const XText& GetPromptUID() const { return mPromptUID; }
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ActionTextSource mSource;
    XText mPromptUID;
    XText mWindowTitle = SharedText<u"">();
    XText mInitialSearch = SharedText<u"">();
    PromptWindowWidth mWindowWidth = PromptWindowWidth::kAutomatic;
    bool mAllowMultiple = false;
    bool mSort = false;
};

class APromptForUserInput final : public HActionOf<APromptForUserInput, HActionType::kPromptForUserInput>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mTitle = SharedText<u"Untitled">();
    XText mPrompt = SharedText<u"Please enter the details for these variables.">();
    __SafeCFPropertyList mVariables; // arrays, kept as they stand
    __SafeCFPropertyList mButtons;
};

enum class PromptFileType : std::int32_t {
    kFile,
    kFolder,
    kNewFile,
    kNewFolder,
};
inline constexpr TextView kPromptFileTypeNames[] = { u"File", u"Folder", u"NewFile", u"NewFolder" };
static_assert( std::size( kPromptFileTypeNames ) == std::size_t( PromptFileType::kNewFolder ) + 1 );
constexpr auto NamesOf( PromptFileType )
{
    return std::span( kPromptFileTypeNames );
}

class APromptForFile final : public HActionOf<APromptForFile, HActionType::kPromptForFile>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    PromptFileType mFileType = PromptFileType::kFile;
    XText mVariable = SharedText<u"VarName">();
    XText mParameter = SharedText<u"">();
    XText mWindowTitle = SharedText<u"">();
    XText mLocation = SharedText<u"">();
};

/// A window that shows a page of the user's.
class ACustomPrompt final : public HActionOf<ACustomPrompt, HActionType::kCustomPrompt>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    bool mUseText = false; ///< the page is the text, not the file
    bool mFloating = false;
    bool mAsynchronously = false;
    bool mResizable = false;
    XText mText = SharedText<u"">();
    XText mPath = SharedText<u"">();
};
