// Differences between two property lists as lines for people and as facts, for every verb that compares. Main thread.
#pragma once

#include "App/Output.h"
#include "CFMethods/PropertyListDifference.h"

#include <functional>
#include <span>
#include <string>

/// Says the path of a value in words; without one it is told by PathText.
using PathNamer = std::function<std::string( std::span<const XPlistPathStep> inPath, XPlistSide inSide )>;

/// Without JSON a line for each difference: added, removed or changed, the path, the values shortened. As JSON "count" and
/// "differences", each with its kind, its paths, its place if there is a namer, and both values whole. Complains when there
/// are more than were kept.
void ShowDifferences(
    const XPlistDifferences& inDifferences, bool inAsJSON, Output& ioOutput, const PathNamer& inNamer = nullptr );
