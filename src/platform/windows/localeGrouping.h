/// How the system writes the grouping of digits.
#pragma once

#include "text/NumberGrouping.h"

namespace qel
{

/// The grouping for a separator and for sizes as the system has them: digits with ";" between, from the last group on.
/// A 0 at the end says that the last size repeats; without it the digits before it form one group.
NumberGrouping GroupingOfSizes(TextView mySeparator, TextView mySizes);

} // namespace qel
