// Publishes macros, groups and smart groups to the desktop's search index, all of them, enabled or not. An
// ordinary save changes no names, so a digest of UIDs and names saves most reindexing. Main thread; the index
// may complete on any thread.
#pragma once

#include "CFMethods/Text.h"
#include "Platform/SearchIndex.h"

#include <functional>
#include <span>

class MMacroSerializedObject;

namespace SpotlightExport
{
using AcknowledgementHandler = std::function<void()>;

/// Exports to the platform's index unless nothing of relevance has changed since the last time.
void ExportToSpotlightIndex();
/// Always indexes; the system asked for it. The handler comes once, in the end.
void ExportToSpotlightIndex( XSearchIndex& inIndex, AcknowledgementHandler inHandler );
/// Indexes these identifiers again, and deletes those that name nothing any more.
void ExportToSpotlightIndexWithIdentifiers(
    XSearchIndex& inIndex, std::span<const Text> inIdentifiers, AcknowledgementHandler inHandler );

/// What the index is told of one object.
[[nodiscard]] XSearchableItem SearchableItemForObject( const MMacroSerializedObject& inObject );
} // namespace SpotlightExport
