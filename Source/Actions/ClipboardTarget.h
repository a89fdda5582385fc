// An action's choice among the system clipboard, the clipboard that triggered the macro, and a named one.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "ClipboardSwitcher/ClipboardReference.h"

class StringSearchee;

/// A reference in two keys. It is written as the store of clipboards has it by then.
void DescribeClipboard(
    HFieldVisitor& inVisitor, HFieldKey inUIDKey, HFieldKey inNameKey, ClipboardReference& ioReference );

class ClipboardTarget
{
public:
    enum class Kind { kSystem, kTrigger, kNamed };

    ClipboardTarget() = default;
    explicit ClipboardTarget( const ClipboardReference& inReference ) : mKind( Kind::kNamed ), mReference( inReference )
    {}

    /// Four keys that begin with the prefix. The system clipboard writes none, the trigger clipboard its flag, a
    /// named one its flag, UID and name. With both flags in a file the named one stands: it carries data.
    void DescribeFields( HFieldVisitor& inVisitor, std::string_view inPrefix );

    [[nodiscard]] Kind GetKind() const { return mKind; }
    void SetKind( Kind inKind ) { mKind = inKind; }
    void SetNamed( const ClipboardReference& inReference );
    [[nodiscard]] const ClipboardReference& GetReference() const { return mReference; }
    /// "SystemClipboard", "TriggerClipboard", or the UID of the named one.
    [[nodiscard]] XText GetGenericIdentifier() const;
    [[nodiscard]] bool operator==( const ClipboardTarget& inOther ) const;
    /// For descriptions, such as "System Clipboard".
    [[nodiscard]] Text GetDisplayName() const;
    /// The name of a named clipboard.
    void AddMatchStrings( StringSearchee& ioSearchee ) const;
    void UpdateToDefaultValues( bool inForce );

private:
    Kind mKind = Kind::kSystem;
    ClipboardReference mReference; // of the named kind
};
