// Owns one UID in a second namespace, apart from the one of macros and groups: toggle macros and quick
// macros. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"

class MUIDObject
{
public:
    /// Takes a fresh UID.
    MUIDObject();
    virtual ~MUIDObject();
    MUIDObject( const MUIDObject& ) = delete;
    MUIDObject& operator=( const MUIDObject& ) = delete;

    [[nodiscard]] virtual const XText& GetUID() const { return mUID; }
    virtual void RecreateUID();
    /// A UID that another object holds is refused: asserted, logged, and the old one stays. Files bring
    /// these UIDs, and no insertion maps references to them.
    virtual void SetUID( const XText& inUID );

    /// False for an empty string.
    [[nodiscard]] static bool UIDInUse( const XText& inUID );

private:
    XText mUID;
};
