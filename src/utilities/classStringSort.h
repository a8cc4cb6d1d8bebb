/// A growing list of texts that can sort itself in ascending order, by character code and without a locale.
///
/// Values count from 1. They can be added at any time, also after a sort. An object is used by one thread at a time.
#pragma once

#include "text/text.h"

#include <vector>

namespace qel
{

class classStringSort
{
public:
    classStringSort() { Clear(); }

    /// Resets the object to its initial state.
    void Clear();

    /// Adds a value at the end; equal ones are all kept.
    void AddValue(TextView myString);

    /// The value at an index from 1 to ValueCount. The other entries of the table, 0 among them, are the empty text.
    /// Error 9: outside the table, whose highest index is at least 2 and may be beyond the count.
    const Text& Value(int32_t myIndex) const;

    int32_t ValueCount() const { return myValueCount; }

    /// Sorts the values. Equal ones are indistinguishable, so their order has no meaning.
    void Sort();

private:
    void QuickSort(int32_t myFirst, int32_t myLast, int32_t myDepth);
    Text& At(int32_t myIndex) { return myValues[static_cast<size_t>(myIndex)]; }

    std::vector<Text> myValues; ///< entry 0 stays empty
    int32_t myValueCount = 0;
};

} // namespace qel
