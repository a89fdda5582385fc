// Which objects of the running domain a verb is about: names, UIDs and a query, resolved whole before anything is changed. A
// name that fits several things is refused with the candidates. Main thread.
#pragma once

#include "App/Output.h"
#include "MacrosWindow/MacroEditing.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

// Kinds that a verb works on, as bits.
inline constexpr std::uint8_t kSelectMacros = 1, kSelectGroups = 2, kSelectSmartGroups = 4, kSelectAll = 7;

class ObjectSelection
{
public:
    explicit ObjectSelection( std::uint8_t inKinds ) : mKinds( inKinds ) {}

    /// NAME..., --query and, when there are several kinds, --kind. With false the names are the verb's own affair, and
    /// come by SetNames.
    void AddOptions( CLI::App& ioCommand, bool inWithNames = true );
    void SetNames( std::vector<std::string> inNames ) { mNames = std::move( inNames ); }

    [[nodiscard]] bool IsEmpty() const { return mNames.empty() and not mQuery; }
    /// Each object once, as lists are sorted. Absent, after a sentence for each name that can't be resolved or for a query that
    /// is refused or finds nothing.
    [[nodiscard]] std::optional<MacroEditing::Objects> Resolve( Output& ioOutput ) const;

private:
    [[nodiscard]] std::uint8_t Kinds() const;
    [[nodiscard]] bool AddMatches( std::uint8_t inKinds, MacroEditing::Objects& ioObjects, Output& ioOutput ) const;

    const std::uint8_t mKinds;
    std::vector<std::string> mNames;
    std::optional<std::string> mQuery;
    std::string mKind;
};

/// The one object of these kinds with this name or UID; null after a sentence.
[[nodiscard]] MMacroSerializedObject* ResolveObject(
    const std::string& inNameOrUID, std::uint8_t inKinds, Output& ioOutput );

/// "macro", "group" or "smart group".
[[nodiscard]] const char* KindWord( const MMacroSerializedObject& inObject );
/// Kind, name, UID, active and, of a macro, the group.
[[nodiscard]] XMutableDictionary FactsOf( const MMacroSerializedObject& inObject );
