// The built-in icons: their numbers, by which code asks for them, and their names, which icons
// save ("KVEP-Folder"). Names that are in files never change; numbers are used by code alone.
// Any thread may read the table.
#pragma once

#include "XCAF/XIcon.h"

#include <span>

enum class KVIconRegistry : std::uint16_t {
    kGear = 3,
    kSeveralActions = 24, ///< a macro of more than one action
    kMacro = 25,
    kPaletteBadge = 29,
    kHotKeyBadge = 30,
    kNoActions = 38, ///< a macro without actions
    kTrigger = 62,
    kCondition = 120,
    kFolder = 126,
    kSmartFolder = 127,
    kDisabledBadge = 130,
    kAction = 134,
};

struct KVIconRegistryRow
{
    KVIconRegistry mIcon;
    TextView mName;
};

/// The icons that have a number, in order of number.
[[nodiscard]] std::span<const KVIconRegistryRow> KVIconRegistryRows();

/// The name of a number, or "" when the table has no such number.
[[nodiscard]] TextView KVIconRegistryName( KVIconRegistry inIcon );

/// True for a name of the table, with or without a number, and for "Action" with a type key as its second part.
[[nodiscard]] bool KVIconRegistryIsKnown( TextView inName, const XText& inSecondPart = {} );

/// Installs the table, so that reading an icon of an unknown name is noticed. Once, at start-up.
void KVIconRegistryStart();

/// The icon of a system icon index; an index that the table doesn't have is an assertion and gives an undefined icon.
[[nodiscard]] XIcon KVIconRegistryIconWithIndex( int inIndex );

/// The icon of an action type: the built-in icon "Action-" and the type's key.
[[nodiscard]] XIcon KVIconRegistryIconForActionType( TextView inTypeKey );

// Each is an image by where it comes from, to be fetched by whoever draws it. It isn't defined for an
// empty argument, nor, with a name, for one that the table doesn't have.
[[nodiscard]] XImage KVIconRegistryImageWithName( TextView inName );
[[nodiscard]] XImage KVIconRegistryImageWithApplicationBundleID( TextView inBundleID );
[[nodiscard]] XImage ImageWithPreferencePane( TextView inPath );
[[nodiscard]] XImage ImageWithHFSIconName( TextView inName );
[[nodiscard]] XImage ImageWithExtension( TextView inExtension );
[[nodiscard]] XImage KVIconRegistryGearImage();
