// Texts for people made out of figures: times and ratings. Their words are localised. Any thread.
#pragma once

#include "CFMethods/Text.h"

/// A duration by its two largest units, as "45 seconds", "1 minute 5 seconds" or "2 days 3 hours"; rounded to
/// whole seconds. What is below 0, or no number, is 0.
[[nodiscard]] Text stringWithTimeInSeconds( double inSeconds );

/// A duration as a total that only grows, by its largest unit, rounded down: "45 seconds", "5 minutes",
/// "3 hours", "12 days", "2 years".
[[nodiscard]] Text stringWithTimeSaved( double inSeconds );

/// A rating from 0 to 100 in stars, twenty for each, a half one as "½"; with inFull the missing ones up to
/// five show as empty stars. Other values are clipped.
[[nodiscard]] Text stringWithRatingStars( double inRating, bool inFull );
