/// What depends on where the user lives.
#pragma once

#include "text/text.h"

#include <cstdint>
#include <locale>

namespace qel
{

/// Writes numbers in decimal digits, grouped as the user's locale has it; plain ones where the system has not that
/// locale. To make one reads the locale from the disk, so it is made once for all the numbers of an operation. Usable
/// on any thread.
class NumberGrouping
{
public:
    NumberGrouping();

    Text GroupedNumberText(int64_t myNumber) const;

private:
    std::locale myLocale;
};

} // namespace qel
