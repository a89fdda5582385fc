// The actions that fill variables, and those that use them, beside the one that sets a variable to a text.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"
#include "Actions/VariableTransformationAction.h"

class ASetVariableToCalculation final
    : public HActionOf<ASetVariableToCalculation, HActionType::kSetVariableToCalculation>,
      public VariableTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    [[nodiscard]] XText GetVariable() const override { return mVariable; }
    void SetVariableText( const XText& inText ) override { mText = inText; }
    [[nodiscard]] XText GetVariableText() const override { return mText; }
    /// Null: the calculation isn't this layer's.
    [[nodiscard]] XText GetTransformationResult( CalculateError*, float*, bool ) const override { return {}; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mVariable = SharedText<u"VarName">();
    XText mText = SharedText<u"1">();
    bool mUseFormat = false;
    XText mFormat = SharedText<u"0.00">();
};

enum class UseVariableAction {
    kSetMouse,
    kSetWindowPosition,
    kSetWindowSize,
    kSetWindowFrame,
    kSetWindowByName,
    kSetWindowByNameContains,
    kSetWindowByNameMatches,
    kSetApplicationByName,
    kSetApplicationByNameContains,
    kSetApplicationByNameMatches,
    kSetSystemVolume,
};
inline constexpr TextView kUseVariableActionNames[] = { u"SetMouse", u"SetWindowPosition", u"SetWindowSize",
    u"SetWindowFrame", u"SetWindowByName", u"SetWindowByNameContains", u"SetWindowByNameMatches",
    u"SetApplicationByName", u"SetApplicationByNameContains", u"SetApplicationByNameMatches", u"SetSystemVolume" };
static_assert( std::size( kUseVariableActionNames ) == std::size_t( UseVariableAction::kSetSystemVolume ) + 1 );
constexpr auto NamesOf( UseVariableAction )
{
    return std::span( kUseVariableActionNames );
}

class AUseVariable final : public HActionOf<AUseVariable, HActionType::kUseVariable>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    UseVariableAction mAction = UseVariableAction::kSetMouse;
    XText mVariable = SharedText<u"VarName">();
};

/// Which entry of the keychain: its name and its account, which by default is that of the user.
class KeychainEntryFields
{
public:
    void DescribeFields( HFieldVisitor& inVisitor );
    /// For descriptions. The account is only told when it isn't the default one.
    [[nodiscard]] Text GetDescription() const;

private:
    XText mName = SharedText<u"Password Name">();
    XText mAccount = SharedText<u"%UserLoginID%">();
};

class ASetVariableToKeychainPassword final
    : public HActionOf<ASetVariableToKeychainPassword, HActionType::kSetVariableToKeychainPassword>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mVariable = SharedText<u"VarName">();
    KeychainEntryFields mEntry;
};

class ASetKeychainPasswordToText final
    : public HActionOf<ASetKeychainPasswordToText, HActionType::kSetKeychainPasswordToText>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    /// Without the text, which may be a password.
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    KeychainEntryFields mEntry;
    XText mText = SharedText<u"">();
};
