// Turns the domain into the bytes of the macros file, which are those of WriteBinaryPropertyList( GetPropertyList() ), while
// each macro, group and smart group keeps its encoded form until it changes. So a save after one edit encodes that
// one, lists the others, and leaves putting the bytes together to the queue that writes them. Main thread.
#pragma once

#include "Macros/MMacroFileData.h"

#include <cstddef>

class MMacroDomain;

namespace MMacroFileEncoder
{
/// Begins a save: the domain gets a new save UUID, as by GetPropertyList. The result doesn't depend on the model any
/// more. Builds for tests encode everything anew as well, and assert that no change was missed.
[[nodiscard]] MMacroFileDataPtr EncodeMacroDomain( MMacroDomain& ioDomain );
/// The same for a copy that isn't a save: the UUID of the last save stays.
[[nodiscard]] MMacroFileDataPtr EncodeSnapshot( MMacroDomain& ioDomain );
/// The same without anything that was kept, so that a change which nobody told is saved as well. For the last save,
/// and for whoever rather waits than trusts.
[[nodiscard]] MMacroFileDataPtr EncodeMacroDomainAnew( MMacroDomain& ioDomain );

// For idle turns, at most so many objects each; one takes some microseconds.

/// Encodes what has no encoded form yet, so that the first save after a load finds it ready. Goes on where the last call
/// ended. True at the end of the domain; what was edited behind the place waits for the save.
bool EncodeSome( const MMacroDomain& inDomain, std::size_t inMostObjects );
/// Encodes kept objects anew and compares, going around the domain from call to call. False, asserted, if a change was
/// missed: it is known now, and the caller sees to a save.
bool CheckSome( const MMacroDomain& inDomain, std::size_t inMostObjects );

/// Is anything kept? Not after a load, until it is encoded.
[[nodiscard]] bool HasAnything();
/// Lets go of all encoded forms. The domain does it when its objects go.
void Forget();
} // namespace MMacroFileEncoder
