/// The index of the system's thread storage that the component uses.
///
/// The compiler's library of threads allocates one at its first use and never frees it. A process has about 1,000 of
/// them, so a host that loads and unloads the component often would run out of them. The library finds the system's
/// function by a pointer that the linker makes where nobody defines it. It is defined here, so that the index is known
/// and is freed when the component is unloaded.
#include "platform/windows/windowsHeaders.h"

namespace qel
{
namespace
{

/// Owns the index. It is made before all other objects with a destructor, so it is destroyed after them: they may use
/// what the library of threads keeps there.
class ThreadIndex
{
public:
    constexpr ThreadIndex() = default;
    ThreadIndex(const ThreadIndex&) = delete;
    ThreadIndex& operator=(const ThreadIndex&) = delete;
    ~ThreadIndex()
    {
        if (myIndex != TLS_OUT_OF_INDEXES)
        {
            TlsFree(myIndex);
        }
    }

    DWORD Take()
    {
        const FARPROC myFunction = GetProcAddress(GetModuleHandleW(L"kernel32"), "TlsAlloc");
        myIndex = reinterpret_cast<DWORD(WINAPI*)()>(reinterpret_cast<void*>(myFunction))();
        return myIndex;
    }

private:
    DWORD myIndex = TLS_OUT_OF_INDEXES;
};

[[gnu::init_priority(101)]] ThreadIndex TheIndex; // the earliest that a program may choose

DWORD WINAPI TakeIndex()
{
    return TheIndex.Take();
}

} // namespace
} // namespace qel

extern "C"
{
    extern DWORD(WINAPI* const QelTakeIndex)() asm(QEL_IMPORT_OF_TLSALLOC);
    DWORD(WINAPI* const QelTakeIndex)() = qel::TakeIndex;
}
