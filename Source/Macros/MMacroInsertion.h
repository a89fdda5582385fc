// The bracket around all creation of persistent objects. It remembers how UIDs changed, so that
// references between the inserted objects can be corrected when it ends. Never nested. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <set>
#include <vector>

class HActionList;
class HBaseAction;
class MMacro;
class MMacroSerializedObject;

class MMacroInsertion
{
public:
    static void Start();
    [[nodiscard]] static bool CurrentlyInserting();

    /// Drops the maps; nothing is rewritten.
    static void Finish();
    /// Each action gets its paste-or-add update, in which it replaces the UIDs that it holds.
    static void Finish( const std::vector<HBaseAction*>& inActions );
    static void Finish( HActionList& inActionList );
    /// Each macro, once, gets its times if unset and its paste-or-add update.
    static void Finish( const std::vector<MMacro*>& inMacros );
    static void Finish( const std::set<MMacro*>& inMacros );
    /// Each object that is a group gets its paste-or-add update.
    static void Finish( const std::vector<MMacroSerializedObject*>& inObjects );

    /// The new UID, or the old one when there is no mapping.
    [[nodiscard]] static XText GetMapping( const XText& inOldUID );
    [[nodiscard]] static XText GetReverseMapping( const XText& inNewUID );
    static void AddMapping( const XText& inOldUID, const XText& inNewUID );
    static void RemoveMapping( const XText& inOldUID, const XText& inNewUID );
};
