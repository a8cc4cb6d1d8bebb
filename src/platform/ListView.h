/// A list of items with three columns and small icons, as the archive's listing fills it.
#pragma once

#include "text/text.h"

#include <array>
#include <cstdint>

namespace qel
{

struct ListItem
{
    Text Caption;                 ///< first column
    int32_t SmallIcon;            ///< 1 any file, 2 page, 3 server-side page, 4 picture
    int32_t ForeColor;            ///< red, green and blue, red in the lowest byte
    std::array<Text, 2> SubItems; ///< second and third column
    Text Tag;                     ///< not shown
};

/// An object is used on the thread that made it. What its operations throw reaches the caller that fills it.
class ListView
{
public:
    virtual ~ListView() = default;
    virtual void Clear() = 0;
    virtual void Add(const ListItem& myItem) = 0;
};

} // namespace qel
