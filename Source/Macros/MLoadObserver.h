// Watches what a load does to its source: what it drops, repairs and upgrades. Loading itself never
// depends on it; `korvalen check` and the notice about a file that was understood only in part
// are made from it. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Macros/MLoadRules.h"
#include "XCAF/XException.h"

class MLoadObserver
{
public:
    virtual ~MLoadObserver() = default;

    /// An element of a list was left out; the reason is the failed expression or a plain sentence.
    virtual void DidDrop( const XPlistArray& inList, std::size_t inIndex, TextView inReason ) = 0;
    /// The value of a key was read from an older key, which the next save won't write.
    virtual void DidReadOlderKey( const XPlistDictionary& inSource, const XKey& inOlder, const XKey& inCurrent ) = 0;
    /// The element stands as another type from now on.
    virtual void DidUpgradeType( const XPlistDictionary& inSource, TextView inOlder, TextView inCurrent ) = 0;
    /// A key's value has an earlier form, which the next save writes in the current one. Nothing is lost by it.
    virtual void DidUpgradeValue( const XPlistDictionary& inSource, const XKey& inKey, TextView inReason ) = 0;
    /// A key's value was set right, by which rule and why.
    virtual void DidRepair(
        const XPlistDictionary& inSource, const XKey& inKey, MLoadRule inRule, TextView inReason ) = 0;
    /// A macro, group or smart group has read its UID. The file's is null or "" when it says none; the object's is
    /// another one when the file's couldn't be used.
    virtual void DidReadUID( const XPlistDictionary& inSource, const XText& inFileUID, const XText& inUID ) = 0;

    /// The observer of this thread, or null.
    [[nodiscard]] static MLoadObserver* Current();

    /// Installs an observer for as long as the object lives.
    class Scope
    {
    public:
        explicit Scope( MLoadObserver& inObserver );
        ~Scope();
        Scope( const Scope& ) = delete;
        Scope& operator=( const Scope& ) = delete;

    private:
        MLoadObserver* mPrevious;
    };
};
