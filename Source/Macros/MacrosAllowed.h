// An allow-list of macros and groups, held by actions that offer macros to choose from. Main thread.
#pragma once

#include "Actions/HFieldVisitor.h"

#include <vector>

class StringSearchee;

enum class MacrosAllowedType { kNormal, kIncludeInactive, kIncludeDisabled };

inline constexpr TextView kMacrosAllowedTypeNames[] = { u"Normal", u"IncludeInactive", u"IncludeDisabled" };
static_assert( std::size( kMacrosAllowedTypeNames ) == std::size_t( MacrosAllowedType::kIncludeDisabled ) + 1 );
constexpr auto NamesOf( MacrosAllowedType )
{
    return std::span( kMacrosAllowedTypeNames );
}

class MacrosAllowed
{
public:
    [[nodiscard]] MacrosAllowedType GetType() const { return mType; }
    void SetType( MacrosAllowedType inType ) { mType = inType; }
    [[nodiscard]] const std::vector<XText>& GetUIDs() const { return mUIDs; }
    void SetUIDs( std::vector<XText> inUIDs ) { mUIDs = std::move( inUIDs ); }

    /// As fields of an action: what the two functions below read and write.
    void DescribeFields( HFieldVisitor& inVisitor, HFieldKey inTypeKey, HFieldKey inUIDsKey );
    /// A missing array is the empty one; elements that are no strings are left out.
    void LoadFromDictionary( const XPlistDictionary& inDictionary, const XKey& inTypeKey, const XKey& inUIDsKey );
    /// The type unless Normal; the array unless empty, each UID once, first occurrences in order.
    void SaveToDictionary( XMutableDictionary& ioDictionary, const XKey& inTypeKey, const XKey& inUIDsKey ) const;
    /// The action was pasted or added: the UIDs follow the mapping of the insertion.
    void UpdateForPasteOrAdd();
    /// Each UID, and the name of the object where there is one.
    void AddMatchStrings( StringSearchee& ioSearchee ) const;

    friend bool operator==( const MacrosAllowed&, const MacrosAllowed& ) = default;

private:
    MacrosAllowedType mType = MacrosAllowedType::kNormal;
    std::vector<XText> mUIDs;
};
