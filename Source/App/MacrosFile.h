// A file of macros as the verbs see it: read, recognised by its content, and loaded into a domain. Main thread.
#pragma once

#include "App/FileInput.h"
#include "Macros/MLoadCheck.h"
#include "Macros/MMacroDomain.h"

#include <string>
#include <vector>

/// The file's value, of whichever form. Throws FileTrouble: unreadable, no property list, or one that holds neither
/// macros nor actions.
struct MacrosFileInput
{
    PropertyListInput mInput;
    MFileKind mKind;
};
[[nodiscard]] MacrosFileInput ReadMacrosFile( const FileInput& inInput, const std::string& inPath );

/// The domain that a file of macros loads into: a macros file, "kvmacros", or "kvlibrary". Throws FileTrouble.
class LoadedMacros
{
public:
    LoadedMacros( const FileInput& inInput, const std::string& inPath );

    [[nodiscard]] MMacroDomain& GetDomain() { return mDomain; }
    [[nodiscard]] MFileKind GetKind() const { return mFile.mKind; }
    [[nodiscard]] XPlistFormat GetFormat() const;

    // Sorted as people expect lists to be.
    [[nodiscard]] std::vector<MMacroGroup*> GetGroups() const;
    [[nodiscard]] std::vector<MMacroSmartGroup*> GetSmartGroups() const;
    [[nodiscard]] static std::vector<MMacro*> GetMacros( const MMacroGroup& inGroup );

    /// Every group, smart group and macro whose name or UID it is, without regard to case.
    [[nodiscard]] std::vector<MMacroSerializedObject*> Find( const XText& inNameOrUID ) const;

private:
    MacrosFileInput mFile;
    MMacroDomain mDomain;
};

/// "Group › Macro" for a macro, the name otherwise; UTF-8.
[[nodiscard]] std::string PlaceOf( const MMacroSerializedObject& inObject );

/// "1 macro", "2 macros".
[[nodiscard]] std::string Counted( std::size_t inCount, const std::string& inSingular, std::string inPlural = {} );
