// A named set of macros with rules of when they are active. The domain owns groups; a group owns its macros
// and walks them in the order of their creation in this process. Main thread.
#pragma once

#include "CFMethods/XSerialMap.h"
#include "Macros/MMacroAppTarget.h"
#include "Macros/MMacroSerializedObject.h"
#include "Macros/MUIDObject.h"
#include "Macros/ThemedPaletteInfo.h"

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

enum class MacroGroupActivate : std::int32_t {
    kNormal,
    kOnceAfterTrigger,
    kToggleWithTrigger,
    kOnceWithPalette,
    kWithPalette,
    kAlwaysWithPalette,
    kActiveAndOnceWithPalette,
    kActiveAndWithPalette,
    kActiveAndAlwaysWithPalette,
};

inline constexpr std::string_view kMacroGroupActivateNames[] = { "Normal", "OnceAfterTrigger", "ToggleWithTrigger",
    "OnceWithPalette", "WithPalette", "AlwaysWithPalette", "ActiveAndOnceWithPalette", "ActiveAndWithPalette",
    "ActiveAndAlwaysWithPalette" };
static_assert(
    std::size( kMacroGroupActivateNames ) == std::size_t( MacroGroupActivate::kActiveAndAlwaysWithPalette ) + 1 );

class KVMacroEnableOverrides;

class MMacroGroup : public MMacroSerializedObject
{
public:
    static constexpr std::uint16_t kNoKeyCode = 32767;

    MMacroGroup();
    /// Loads; throws XException when "Macros" is missing. The overrides may be null.
    MMacroGroup( const __SafeCFPropertyList& inValue, const KVMacroEnableOverrides* inOverrides );
    ~MMacroGroup() override;

    [[nodiscard]] Text GetName() const override;
    void SetName( const XText& inName ) override;
    [[nodiscard]] const XText& GetStoredName() const { return mName; } ///< null for none
    [[nodiscard]] Text GetUnambiguousName() const override;
    /// The latest of the group's creation and all its macros' modifications.
    [[nodiscard]] XAbsoluteTime GetModificationTime() const override;
    [[nodiscard]] XIcon GetXIcon() const override;
    /// Dimmed when the group isn't active on this computer.
    [[nodiscard]] XIcon GetXIconWithDisabledBadge() const override;
    bool SetTimesIfNotSet( XAbsoluteTime inTime ) override;
    using MMacroSerializedObject::SetTimesIfNotSet;
    [[nodiscard]] MMacroGroup* GetAsMacroGroup() override { return this; }
    [[nodiscard]] const MMacroGroup* GetAsMacroGroup() const override { return this; }
    void AddMatchStrings( StringSearchee& ioSearchee ) const override;
    /// The file form, with all macros.
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const override;
    /// The file form around these macros.
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyListAround( CFContainer<XPlistArray> inMacros ) const;
    /// Not what a group uses: loads without overrides.
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue ) override;
    [[nodiscard]] Text SerializedObjectKindName() const override;

    virtual void LoadFromPropertyList( const __SafeCFPropertyList& inValue, const KVMacroEnableOverrides* inOverrides );
    virtual void UpdateForPasteOrAdd();
    /// The custom icon only.
    [[nodiscard]] virtual XIcon GetXIconForPalette() const { return GetCustomIcon(); }
    /// The macros that a palette of this group lists, in order.
    [[nodiscard]] virtual std::vector<MMacro*> GetMacroPaletteItemList() const;
    /// Takes ownership.
    virtual void InsertMacro( std::unique_ptr<MMacro> inMacro );
    /// Gives the macro up without destroying it: the caller owns it now.
    virtual void RemoveMacro( MMacro* inMacro );

    void DeleteMacro( MMacro* inMacro );
    void DeleteAllMacros();
    template<class Block>
    void DoForEveryMacro( const Block& inBlock ) const
    {
        mMacros.ApplyBlock( [&inBlock]( MMacro* macro ) { inBlock( *macro ); } );
    }
    void GetEveryMacro( std::vector<MMacro*>& ioMacros ) const;
    /// Without regard to case; null when there is none.
    [[nodiscard]] MMacro* FindMacroByName( const XText& inName ) const;
    [[nodiscard]] MMacro* FindFirstMacro() const;
    [[nodiscard]] std::size_t GetMacroCount() const { return mMacros.GetCount(); }

    /// A test of the name, not a flag.
    [[nodiscard]] bool IsDefaultMacroGroup() const;
    [[nodiscard]] bool IsDisabledForThisMac() const;
    void SetDisabledForThisMac( bool inDisabled );
    [[nodiscard]] bool IsActiveForThisMac() const { return IsActive() and not IsDisabledForThisMac(); }
    [[nodiscard]] bool IsAlwaysActive() const;
    /// With the application's name, without its ".app". True as well for the activations that show a palette
    /// beside being active.
    [[nodiscard]] bool IsAlwaysActiveInOneApplication( Text& outName ) const;
    [[nodiscard]] bool IsGloballyActive() const;
    /// The localised words for how the group is activated.
    [[nodiscard]] Text GetActivateDisplayText() const;

    [[nodiscard]] const MMacroAppTarget& GetTarget() const { return mTarget; }
    void SetTarget( MMacroAppTarget inTarget );
    [[nodiscard]] const MFrontWindowCondition& GetWindowCondition() const { return mWindowCondition; }
    void SetWindowCondition( MFrontWindowCondition inCondition )
    {
        mWindowCondition = std::move( inCondition );
        DidChange();
    }
    [[nodiscard]] MacroGroupActivate GetActivate() const { return mActivate; }
    void SetActivate( MacroGroupActivate inActivate )
    {
        mActivate = inActivate;
        DidChange();
    }
    [[nodiscard]] std::uint16_t GetKeyCode() const { return mKeyCode; }
    [[nodiscard]] std::uint32_t GetModifiers() const { return mModifiers; }
    [[nodiscard]] bool GetDisplayToggle() const { return mDisplayToggle; }
    [[nodiscard]] const MUIDObject& GetToggleMacro() const { return mToggleMacro; }
    [[nodiscard]] const std::vector<XText>& GetDisabledMacs() const { return mDisabledMacs; }

    // XML text forms, for scripts. A text that doesn't parse is ignored.
    [[nodiscard]] std::optional<Text> GetAvailableApplicationXML() const;
    void SetAvailableApplicationXML( TextView inText );
    [[nodiscard]] std::optional<Text> GetAvailableWindowXML() const;
    void SetAvailableWindowXML( TextView inText );
    [[nodiscard]] std::optional<Text> GetActivationXML() const;
    void SetActivationXML( TextView inText );

    /// An export of the group with this one macro; asserts that there is one.
    [[nodiscard]] __SafeCFPropertyList CopyOneMacroToPropertyListForExport( const MMacro* inMacro ) const;
    /// The macro of such an export, which the caller owns. Within an insertion. Throws XException when the value has
    /// another shape or the macro doesn't load.
    [[nodiscard]] static std::unique_ptr<MMacro> CopyOneMacroFromExportPropertyList(
        const __SafeCFPropertyList& inValue );
    [[nodiscard]] std::unique_ptr<MMacroGroup> Clone( CloneFor inWhat ) const;

private:
    void Reset();
    void LoadActivationFromDictionary( const XPlistDictionary& inDictionary );
    void SaveActivationToDictionary( XMutableDictionary& ioDictionary, bool inForExport ) const;
    void LoadWindowCondition( const XPlistDictionary& inDictionary );
    void SaveWindowCondition( XMutableDictionary& ioDictionary ) const;
    void RepairTarget( const XPlistDictionary& inDictionary );
    void LoadToggleMacroAndDisabledMacs( const XPlistDictionary& inDictionary );
    void ForceDefaults( const XPlistDictionary& inDictionary );
    void LoadMacros( const XPlistArray& inMacros, const KVMacroEnableOverrides* inOverrides );
    [[nodiscard]] __SafeCFPropertyList CopyOneMacroOrAllMacrosToPropertyList(
        const MMacro* inMacro, bool inForExport ) const;
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyListAround(
        CFContainer<XPlistArray> inMacros, bool inForExport ) const;

    XText mName;
    MMacroAppTarget mTarget;
    MFrontWindowCondition mWindowCondition;
    MacroGroupActivate mActivate = MacroGroupActivate::kNormal;
    std::uint16_t mKeyCode = kNoKeyCode;
    std::uint32_t mModifiers = 0;
    bool mAddToMacroPalette = false;
    bool mAddToStatusMenu = false;
    bool mDisplayToggle = true;
    ThemedPaletteInfo mTheme;
    bool mPaletteUnderMouse = false;
    MUIDObject mToggleMacro;
    std::vector<XText> mDisabledMacs; // each once, in file order; empty for none
    XSerialMap<unsigned int, MMacro*> mMacros;
};
