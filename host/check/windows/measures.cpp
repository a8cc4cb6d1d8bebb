// What a process holds of the system.
#include "check/system.h"

#include "platform/windows/windowsHeaders.h"

namespace qel::host
{

namespace
{

size_t BytesInUse(HANDLE myHeap)
{
    size_t theBytes = 0;
    PROCESS_HEAP_ENTRY myEntry = {};
    HeapLock(myHeap);
    while (HeapWalk(myHeap, &myEntry) != 0)
    {
        if ((myEntry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
        {
            theBytes += myEntry.cbData + myEntry.cbOverhead;
        }
    }
    HeapUnlock(myHeap);
    return theBytes;
}

} // namespace

size_t MemoryInUse()
{
    std::vector<HANDLE> myHeaps(GetProcessHeaps(0, nullptr));
    GetProcessHeaps(static_cast<DWORD>(myHeaps.size()), myHeaps.data());
    size_t theBytes = 0;
    for (HANDLE const myHeap : myHeaps)
    {
        // The list is in a heap itself, and must not count: it is longer when a library has made a heap meanwhile.
        theBytes += BytesInUse(myHeap);
    }
    return theBytes - myHeaps.capacity() * sizeof(HANDLE);
}

int64_t OpenFileCount()
{
    // The system does not say which handles a process has. It takes them from blocks of a table, the first ones first.
    constexpr ULONG_PTR HandleStep = 4;
    constexpr ULONG_PTR BlockSize = 256 * HandleStep;
    int64_t theCount = 0;
    bool myBlockIsUsed = true;
    for (ULONG_PTR myBlock = 0; myBlockIsUsed; myBlock += BlockSize)
    {
        myBlockIsUsed = false;
        for (ULONG_PTR i = myBlock; i < myBlock + BlockSize; i += HandleStep)
        {
            const auto myHandle = reinterpret_cast<HANDLE>(i);
            SetLastError(ERROR_SUCCESS);
            theCount += GetFileType(myHandle) == FILE_TYPE_DISK ? 1 : 0;
            myBlockIsUsed = myBlockIsUsed || GetLastError() != ERROR_INVALID_HANDLE;
        }
    }
    return theCount;
}

} // namespace qel::host
