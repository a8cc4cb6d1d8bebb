/// Whole numbers with their digits in groups, as a user's locale writes them.
#pragma once

#include "text/text.h"

#include <cstdint>
#include <vector>

namespace qel
{

/// How a locale groups the digits of a number.
struct NumberGrouping
{
    Text Separator; ///< between two groups

    /// The sizes of the groups from the last one on; the last size repeats, and 0 ends the grouping. None: no groups.
    std::vector<uint8_t> GroupSizes;
};

/// The number in decimal digits, grouped.
Text GroupedNumberText(int64_t myNumber, const NumberGrouping& myGrouping);

} // namespace qel
