// The exported names of a shared library, from its table in memory.
#include "check/system.h"

#include "check/expectations.h"
#include "platform/windows/windowsHeaders.h"

namespace qel::host
{

namespace
{

/// What is at an offset in a loaded library.
template <class Record>
const Record* At(HMODULE myLibrary, DWORD myPlace)
{
    return reinterpret_cast<const Record*>(reinterpret_cast<const std::byte*>(myLibrary) + myPlace);
}

} // namespace

std::set<std::string> ExportedNames(const std::filesystem::path& myFile)
{
    HMODULE const myLibrary = GetModuleHandleW(myFile.c_str());
    Expect("the component is loaded", myLibrary != nullptr);
    const auto myHeaders =
        At<IMAGE_NT_HEADERS>(myLibrary, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(myLibrary, 0)->e_lfanew));
    const IMAGE_DATA_DIRECTORY& myDirectory = myHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    std::set<std::string> theNames;
    if (myDirectory.Size == 0)
    {
        return theNames;
    }
    const auto& myExports = *At<IMAGE_EXPORT_DIRECTORY>(myLibrary, myDirectory.VirtualAddress);
    std::set<WORD> myNamed;
    for (DWORD i = 0; i < myExports.NumberOfNames; ++i)
    {
        theNames.insert(At<char>(myLibrary, At<DWORD>(myLibrary, myExports.AddressOfNames)[i]));
        myNamed.insert(At<WORD>(myLibrary, myExports.AddressOfNameOrdinals)[i]);
    }
    for (DWORD i = 0; i < myExports.NumberOfFunctions; ++i) // some may have only a number
    {
        if (At<DWORD>(myLibrary, myExports.AddressOfFunctions)[i] != 0 && !myNamed.contains(static_cast<WORD>(i)))
        {
            theNames.insert("#" + std::to_string(myExports.Base + i));
        }
    }
    return theNames;
}

} // namespace qel::host
