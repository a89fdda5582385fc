// A reference to a named clipboard, as macros and other stored objects hold it: the clipboard's UID, with its
// name beside it for the time when the UID is gone. Which clipboards exist is the store's to say, which
// installs itself as the ClipboardNames. Values of the main thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <functional>
#include <optional>

class StringSearchee;

/// What a reference asks of the store of named clipboards.
class ClipboardNames
{
public:
    virtual ~ClipboardNames() = default;
    /// The display name of the clipboard with the UID; absent when there is none.
    [[nodiscard]] virtual std::optional<Text> StrictGetClipboardNameByUID( TextView inUID ) const = 0;
    /// The UID of the clipboard with the display name; absent when there is none.
    [[nodiscard]] virtual std::optional<Text> GetClipboardUIDByName( TextView inName ) const = 0;
    /// The UID of the clipboard with the display name, which is made, with the given UID, when there is none.
    [[nodiscard]] virtual Text GetOrCreateClipboard( TextView inName, TextView inUID ) = 0;

    /// Null while there is no store: every reference then keeps what it holds.
    [[nodiscard]] static ClipboardNames* Current();
    /// Not owned; must outlive its time as the current one. Null takes it away.
    static void SetCurrent( ClipboardNames* inNames );
};

class ClipboardReference
{
public:
    ClipboardReference() = default;
    ClipboardReference( const XText& inUID, const XText& inName );
    ClipboardReference( const ClipboardReference& inOther );
    ClipboardReference& operator=( const ClipboardReference& inOther );
    ~ClipboardReference();

    /// Does any reference of this process hold the UID?
    [[nodiscard]] static bool ClipboardUIDInUse( TextView inUID );

    [[nodiscard]] const XText& GetClipboardUID() const { return mUID; }
    /// The name beside the UID, kept even when the UID is gone.
    [[nodiscard]] const XText& GetClipboardName() const { return mName; }
    [[nodiscard]] bool IsEmpty() const { return mUID.IsEmpty() and mName.IsEmpty(); }
    /// Takes the name along, if the store knows the UID.
    void SetClipboardUID( const XText& inUID );
    void Set( const XText& inUID, const XText& inName );

    /// Follows the store: a clipboard that was renamed gives its new name, one that is missing is made anew. Forced, the
    /// UID doesn't count: the reference becomes that of the clipboard with its name. True when the reference changed;
    /// then a reload of all macros is asked for. Without a store nothing changes.
    bool UpdateClipboardReference( bool inForce );
    /// Who is asked for it. The model may just be written, so it only notes the wish and reloads later. Empty for nobody.
    static void SetAskForReload( std::function<void()> inAskForReload );
    /// As it would be after an update that isn't forced.
    [[nodiscard]] ClipboardReference Updated() const;

    /// By name as people order names, then by UID.
    [[nodiscard]] int CompareWithSame( const ClipboardReference& inOther ) const;
    /// Adds the name.
    void AddMatchStrings( StringSearchee& ioSearchee ) const;

private:
    XText mUID{ TextView() };
    XText mName{ TextView() };
};
