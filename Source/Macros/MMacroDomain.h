// The one document in memory: all macro groups and smart groups, the version numbers of the file, and the date
// of the last load. It turns itself into the dictionary of the macros file and back, merges foreign groups into
// itself, and publishes itself to the system's search index. It lives as long as the application; a reload
// replaces its contents and keeps the object. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Macros/MMacroGroup.h"
#include "Macros/MMacroSmartGroup.h"

#include <functional>
#include <memory>
#include <set>
#include <unordered_set>
#include <vector>

class KVMacroEnableOverrides;

class MMacroDomain
{
public:
    static constexpr std::uint32_t kCurrentMacroPreferencesVersion = 91;

    /// Throws XException "gMacroDomain == nullptr" when there is one already.
    MMacroDomain();
    ~MMacroDomain();
    MMacroDomain( const MMacroDomain& ) = delete;
    MMacroDomain& operator=( const MMacroDomain& ) = delete;
    /// The one instance, or null.
    [[nodiscard]] static MMacroDomain* Get();
    /// Ends the trigger managers. At termination.
    static void Terminate();

    /// Replaces the contents. Throws XException, and leaves the contents as they were, for a value that is no
    /// dictionary or has no array "MacroGroups". A group that can't be understood is left out.
    void LoadFromPropertyList(
        const __SafeCFPropertyList& inValue, const KVMacroEnableOverrides* inOverrides = nullptr );
    /// The file's dictionary. Each call makes a new save UUID.
    [[nodiscard]] __SafeCFPropertyList GetPropertyList();
    /// The same for a copy that isn't a save: LastSaveUUID stays.
    [[nodiscard]] __SafeCFPropertyList GetSnapshotPropertyList() const;
    /// The file's dictionary around the entries that GetPropertyList would write: the smart groups, then the groups, each
    /// in file order. Begins a save, so that it makes a new save UUID.
    [[nodiscard]] __SafeCFPropertyList GetPropertyListAround( CFContainer<XPlistArray> inEntries );
    [[nodiscard]] __SafeCFPropertyList GetSnapshotPropertyListAround( CFContainer<XPlistArray> inEntries ) const;
    [[nodiscard]] std::vector<MMacroSmartGroup*> GetSmartGroupsInFileOrder() const;
    [[nodiscard]] std::vector<MMacroGroup*> GetMacroGroupsInFileOrder() const;
    void Empty();

    void DoForEveryMacro( const std::function<void( MMacroGroup&, MMacro& )>& inBlock ) const;
    void DoForEveryMacroGroup( const std::function<void( MMacroGroup& )>& inBlock ) const;
    void DoForEveryMacroSmartGroup( const std::function<void( MMacroSmartGroup& )>& inBlock ) const;
    /// Smart groups, then groups, in no particular order.
    void GetUnorderedEveryMacroGroupEntry( std::vector<MMacroSerializedObject*>& ioEntries ) const;
    [[nodiscard]] std::size_t GetMacroGroupCount() const { return mMacroGroups.size(); }
    [[nodiscard]] std::size_t GetMacroSmartGroupCount() const { return mMacroSmartGroups.size(); }

    // Inserting takes ownership; deleting destroys.
    void InsertMacroGroup( std::unique_ptr<MMacroGroup> inGroup );
    void InsertMacroSmartGroup( std::unique_ptr<MMacroSmartGroup> inSmartGroup );
    void DeleteMacroGroup( MMacroGroup* inGroup );
    void DeleteMacroSmartGroup( MMacroSmartGroup* inSmartGroup );
    /// A group or smart group. The default group stays: deleting it is an assertion.
    void DeleteMacroGroupEntry( MMacroSerializedObject* inEntry );

    // Names without regard to case.
    [[nodiscard]] bool MacroGroupWithNameExists( const XText& inName ) const;
    [[nodiscard]] bool MacroSmartGroupWithNameExists( const XText& inName ) const;
    /// The text for an untitled group, numbered from 2 when there is one.
    [[nodiscard]] Text GetUntitledMacroGroupName() const;
    [[nodiscard]] Text GetUntitledMacroSmartGroupName() const;
    /// The group of the default's name that is active everywhere; made if there is none.
    MMacroGroup* GetDefaultMacroGroup();
    /// True if any time was set.
    bool SetTimesIfNotSet();

    /// The group of the same name and target, which a merge has the macros join; null if there is none.
    [[nodiscard]] MMacroGroup* FindMergeTarget( const MMacroGroup& inGroup ) const;
    /// During an insertion. All macros of the group go to outMacros. With inMergeWithExisting they join the group
    /// of the same name and target, if there is one. inDisable turns off at the highest level that doesn't touch
    /// what was there.
    void MergeMacroGroup( std::unique_ptr<MMacroGroup> inGroup, bool inMergeWithExisting, bool inDisable,
        std::vector<MMacro*>& outMacros );
    /// Merges groups and smart groups within an insertion of its own. The result counts macros and smart groups. An
    /// element that can't be understood throws XException and leaves the insertion open.
    std::size_t MergePropertyListFromArray( const __SafeCFPropertyList& inArray, bool inDisable,
        std::vector<MMacro*>& outMacros, std::vector<MMacroSmartGroup*>& outSmartGroups );
    std::size_t MergePropertyListFromArray( const __SafeCFPropertyList& inArray );

    [[nodiscard]] std::uint32_t GetMacroDefaultsVersion() const { return mMacroDefaultsVersion; }
    void SetMacroDefaultsVersion( std::uint32_t inVersion ) { mMacroDefaultsVersion = inVersion; }
    [[nodiscard]] std::uint32_t GetMacroPreferencesVersion() const { return mMacroPreferencesVersion; }
    void SetMacroPreferencesVersion( std::uint32_t inVersion ) { mMacroPreferencesVersion = inVersion; }
    [[nodiscard]] const XText& GetLastSaveDate() const { return mLastSaveDate; }
    void SetLastSaveDate( const XText& inDate ) { mLastSaveDate = inDate; }

    [[nodiscard]] static const XText& LastSaveUUID(); ///< null before the first save
    [[nodiscard]] static const XText& LastLoadUUID(); ///< null when the file named none

    /// True when the entry of a file's group array is a macro group. Throws XException when it is no dictionary.
    [[nodiscard]] static bool LooksLikeMacroGroupAndNotMacroSmartGroup( const __SafeCFPropertyList& inValue );

    /// The program's version, "1.0.0d1" if it has none.
    [[nodiscard]] static Text GetOurVersion();
    /// The "Version" of a macros file's bytes, "1.0.0d1" if they have none.
    [[nodiscard]] static Text VersionFromFileData( std::span<const std::uint8_t> inData );
    /// The same of a value that was parsed already.
    [[nodiscard]] static Text VersionFromPropertyList( const __SafeCFPropertyList& inProperties );

private:
    [[nodiscard]] CFContainer<XPlistArray> CopyEntries() const;
    [[nodiscard]] __SafeCFPropertyList PropertyListWith(
        CFContainer<XPlistArray> inEntries, const XText& inSaveUUID ) const;
    void LoadVersions( const XPlistDictionary& inDictionary );
    void LoadEntry( const __SafeCFPropertyList& inEntry, const KVMacroEnableOverrides* inOverrides,
        std::vector<MMacro*>& outMacros );
    void MergeInto( MMacroGroup& ioFound, MMacroGroup& inGroup, bool inDisable );

    std::uint32_t mMacroDefaultsVersion = 0;
    std::uint32_t mMacroPreferencesVersion = 0;
    std::set<MMacroGroup*> mMacroGroups;
    std::unordered_set<MMacroSmartGroup*> mMacroSmartGroups;
    XText mLastSaveDate = u"";
};
