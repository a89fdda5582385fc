// The desktop as a whole: opening what the user wants to see, the keys that are held, and the permission to control
// other applications. Main thread.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <filesystem>

/// Bits of the modifier keys, as the platform numbers them.
enum XModifierFlags : std::uint32_t {
    kModifierShift = 131072,
    kModifierControl = 262144,
    kModifierOption = 524288,
    kModifierCommand = 1048576,
    kAllModifiers = 1966080,
};

class XWorkspace
{
public:
    virtual ~XWorkspace() = default;

    /// Opens with whatever the user has chosen for it; false when nothing could be asked to.
    virtual bool OpenURL( TextView inURL ) = 0;
    virtual bool OpenFile( const std::filesystem::path& inPath ) = 0;
    /// Shows the file in the file manager.
    virtual bool Reveal( const std::filesystem::path& inPath ) = 0;

    /// The modifier keys that are held at this moment; see XModifierFlags.
    [[nodiscard]] virtual std::uint32_t ModifierFlags() const { return 0; }

    /// Must the user permit programs to control others? Where it needn't be, the engine is trusted until it says otherwise.
    [[nodiscard]] virtual bool NeedsAccessibilityPermission() const { return false; }
    /// May this process control other applications? With inAsk the system may ask the user.
    [[nodiscard]] virtual bool IsTrustedForAccessibility( bool /*inAsk*/ ) const { return true; }
    /// One harmless request, after which the system lists this application among those that want to.
    virtual void MakeAccessibilityRequest() {}
    /// Shows where the user gives the permission.
    virtual void OpenAccessibilityPane() {}

    /// Opens nothing; no key is held; trusted, as where no permission is needed.
    [[nodiscard]] static XWorkspace& Absent();
};
