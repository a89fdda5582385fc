// The actions that open things.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"

/// With which application a thing is opened: the default one, or one that the user chose.
class OpeningApplication
{
public:
    /// The keys "IsDefaultApplication" and "Application". Older files say it by the application alone.
    void DescribeFields( HFieldVisitor& inVisitor );

    void SetSpecific( XApplicationIdentifier inApplication );
    /// For descriptions: "" for the default application.
    [[nodiscard]] Text GetName() const;

private:
    bool mIsDefault = true;
    std::optional<XApplicationIdentifier> mApplication; // kept when the default one is chosen
};

class AOpenURL final : public HActionOf<AOpenURL, HActionType::kOpenURL>
{
public:
    AOpenURL();
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mURL;
    OpeningApplication mApplication;
    bool mOpenInBackground = false;
};

class AOpen1File final : public HActionOf<AOpen1File, HActionType::kOpen1File>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    void SetPath( const XText& inPath ) { mPath = inPath; }
    /// Otherwise the default application opens the file.
    void SetApplication( XApplicationIdentifier inApplication )
    {
        mApplication.SetSpecific( std::move( inApplication ) );
    }
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPath = SharedText<u"">();
    OpeningApplication mApplication;
};

/// Opens what is selected in the desktop's file browser.
class AOpenFinderSelection final : public HActionOf<AOpenFinderSelection, HActionType::kOpenFinderSelection>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    void ReadOlderTarget( HFieldVisitor& inVisitor );

    ApplicationTarget mTarget;
};

class AOpenPrefPane final : public HActionOf<AOpenPrefPane, HActionType::kSystemPrefPane>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mFile = SharedText<u"">();
};

/// Opens an entry of a password manager, and so its page.
class AOpen1Password final : public HActionOf<AOpen1Password, HActionType::kOpen1Password>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mBookmarkUID = SharedText<u"">();
    XText mOpenURL = SharedText<u"">();
};
