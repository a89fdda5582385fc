// Common base of macros, macro groups and smart groups: identity, creation time, enabled flag, icon. The
// owner is the group or the domain; user-interface code keeps UIDs (MCachedMacroSerializedObject), never
// pointers. From construction to destruction an object stands in the table of UIDs, which holds each UID
// once. All of it belongs to the main thread.
#pragma once

#include "CFMethods/BinaryPropertyListPieces.h"
#include "CFMethods/PropertyList.h"
#include "Macros/CloneFor.h"
#include "Macros/MSearchTexts.h"
#include "Utility/Work/Clock.h"
#include "XCAF/XIcon.h"

class MMacro;
class MMacroGroup;
class MMacroSmartGroup;
class SearchableTexts;
class StringSearchee;

class MMacroSerializedObject
{
public:
    /// Takes a serial number and a fresh UID.
    MMacroSerializedObject();
    virtual ~MMacroSerializedObject();
    MMacroSerializedObject( const MMacroSerializedObject& ) = delete;
    MMacroSerializedObject& operator=( const MMacroSerializedObject& ) = delete;

    /// The name as people see it; never empty for an object without a stored name.
    [[nodiscard]] virtual Text GetName() const = 0;
    virtual void SetName( const XText& inName ) = 0;
    /// The name in a sentence that also says what kind of object it is.
    [[nodiscard]] virtual Text GetUnambiguousName() const = 0;
    [[nodiscard]] virtual XAbsoluteTime GetModificationTime() const = 0;

    [[nodiscard]] virtual bool HasCustomIcon() const { return bool( mCustomIconData ); }
    [[nodiscard]] virtual const __SafeCFPropertyList& GetCustomIconData() const { return mCustomIconData; }
    /// Keeps the saved form as it stands; null takes the custom icon away.
    virtual void SetCustomIconData( const __SafeCFPropertyList& inData );
    /// Decoded on first use; undefined when there is none.
    [[nodiscard]] virtual XIcon GetCustomIcon() const;
    /// An undefined icon takes the custom icon away. Dimming is never kept.
    virtual void SetCustomIcon( const XIcon& inIcon );
    [[nodiscard]] virtual XIcon GetXIcon() const = 0;
    [[nodiscard]] virtual XIcon GetXIconWithDisabledBadge() const;

    [[nodiscard]] virtual const XText& GetUID() const;
    virtual void RecreateUID();
    /// A UID that another object holds is asserted, and the table then names this object.
    virtual void SetUID( const XText& inUID );

    /// True if something changed. Times below 1.0 count as not set.
    virtual bool SetTimesIfNotSet( XAbsoluteTime inTime );
    bool SetTimesIfNotSet() { return SetTimesIfNotSet( XClock::Current().Now() ); }

    // The system's only downcasts: null but in the one class that matches.
    [[nodiscard]] virtual MMacro* GetAsMacro() { return nullptr; }
    [[nodiscard]] virtual const MMacro* GetAsMacro() const { return nullptr; }
    [[nodiscard]] virtual MMacroGroup* GetAsMacroGroup() { return nullptr; }
    [[nodiscard]] virtual const MMacroGroup* GetAsMacroGroup() const { return nullptr; }
    [[nodiscard]] virtual MMacroSmartGroup* GetAsMacroSmartGroup() { return nullptr; }
    [[nodiscard]] virtual const MMacroSmartGroup* GetAsMacroSmartGroup() const { return nullptr; }

    [[nodiscard]] virtual bool IsActive() const { return mIsActive; }
    virtual void SetIsActive( bool inActive )
    {
        mIsActive = inActive;
        DidChange();
    }

    /// Without regard to case.
    [[nodiscard]] virtual bool NameMatches( const XText& inMatch ) const;
    [[nodiscard]] virtual bool UIDMatches( const XText& inMatch ) const;
    [[nodiscard]] virtual bool NameOrUIDMatches( const XText& inMatch ) const;
    virtual void AddMatchStrings( StringSearchee& ioSearchee ) const = 0;
    /// Of these, the texts that are the object's own: not those of its group, nor times or states.
    virtual void AddOwnMatchStrings( StringSearchee& ioSearchee ) const { AddMatchStrings( ioSearchee ); }
    /// The own texts, ready to be searched. They are kept until DidChangeWords.
    [[nodiscard]] const SearchableTexts& GetSearchableTexts() const { return mSearchTexts.Get( *this ); }
    /// Whoever changes an action or trigger in place says so here, or by the calls for the actions' icon. Everything
    /// else says so by itself.
    void DidChangeWords();

    /// Something that is saved changed: every operation that changes the object calls it, for a change that isn't told
    /// isn't saved. DidChangeWords tells it as well.
    void DidChange() { mPiece.reset(); }
    /// The encoded form of the object as it is now, a group's without its macros; null when there is none. MMacroFileEncoder
    /// keeps it here.
    [[nodiscard]] const XPlistPiecePtr& GetPiece() const { return mPiece; }
    void SetPiece( XPlistPiecePtr inPiece ) { mPiece = std::move( inPiece ); }

    /// The object as a property list.
    [[nodiscard]] virtual __SafeCFPropertyList CopyToPropertyList() const = 0;
    /// Only during an insertion. Throws XException when the value can't be understood.
    virtual void LoadFromPropertyList( const __SafeCFPropertyList& inValue ) = 0;
    /// "Macro" and its like, for people.
    [[nodiscard]] virtual Text SerializedObjectKindName() const = 0;

    [[nodiscard]] std::uint32_t GetSerialNumber() const { return mSerialNumber; }
    [[nodiscard]] XAbsoluteTime GetCreationTime() const { return mCreationTime; }

    /// Null for an empty UID or an unknown one. One hash look-up.
    [[nodiscard]] static MMacroSerializedObject* FindObjectByUID( const XText& inUID );
    [[nodiscard]] static MMacro* FindMacroByUID( const XText& inUID );
    [[nodiscard]] static MMacroGroup* FindMacroGroupByUID( const XText& inUID );
    [[nodiscard]] static MMacroSmartGroup* FindMacroSmartGroupByUID( const XText& inUID );
    [[nodiscard]] static bool UIDInUse( const XText& inUID ) { return FindObjectByUID( inUID ) != nullptr; }
    [[nodiscard]] static Text GetUnknownUnambiguousName();

    // Comparisons for sorting: -1, 0 or 1. The context is unused; the form is that of a sort function.
    static int CompareAlphabetically(
        const MMacroSerializedObject* inA, const MMacroSerializedObject* inB, void* inContext = nullptr );
    static int CompareByUID(
        const MMacroSerializedObject* inA, const MMacroSerializedObject* inB, void* inContext = nullptr );
    static int CompareByCreation(
        const MMacroSerializedObject* inA, const MMacroSerializedObject* inB, void* inContext = nullptr );

protected:
    /// Of an object that is read right away: it has no UID until LoadBaseFromDictionary gives it one, rather than
    /// one that is drawn, registered and thrown away.
    struct WithoutUID
    {};
    explicit MMacroSerializedObject( WithoutUID );

    /// Reads the base's keys; the subclass has set the name before, for the log lines.
    void LoadBaseFromDictionary( const XPlistDictionary* inDictionary );
    void SaveBaseToDictionary( XMutableDictionary& ioDictionary ) const;
    /// The time under a key; 0, which counts as not set, when it is missing or no number.
    [[nodiscard]] static XAbsoluteTime ReadTime( const XPlistDictionary& inDictionary, const XKey& inKey );
    /// Without line breaks.
    [[nodiscard]] static XText CleanedName( const XText& inName );
    /// The part of every Clone. The target keeps the UID that it was made with.
    void CloneToSerializeObject( CloneFor inWhat, MMacroSerializedObject& ioTarget ) const;

private:
    void LoadUID( const XPlistDictionary& inDictionary );
    void Unregister();

    std::uint32_t mSerialNumber;
    XText mUID;
    XAbsoluteTime mCreationTime = 0;
    bool mIsActive = true;
    __SafeCFPropertyList mCustomIconData;
    MSearchTexts mSearchTexts;
    XPlistPiecePtr mPiece;
    mutable XIcon mCustomIcon; // decoded from the data on first use: lists redraw icons constantly
};

/// What user-interface code keeps in place of a pointer: the UID alone, resolved each time.
class MCachedMacroSerializedObject
{
public:
    MCachedMacroSerializedObject() : MCachedMacroSerializedObject( nullptr ) {}
    explicit MCachedMacroSerializedObject( const MMacroSerializedObject* inObject );
    MCachedMacroSerializedObject& operator=( const MMacroSerializedObject* inObject );

    [[nodiscard]] const XText& GetUID() const { return mUID; } ///< "" for none
    /// Null when the object has gone.
    [[nodiscard]] MMacroSerializedObject* Get() const { return MMacroSerializedObject::FindObjectByUID( mUID ); }

private:
    XText mUID;
};
