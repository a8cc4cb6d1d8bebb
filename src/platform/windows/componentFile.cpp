#include "platform/windows/componentFile.h"

#include "platform/windows/Handle.h"
#include "platform/windows/nativePath.h"
#include "platform/windows/windowsHeaders.h"

#include <algorithm>

namespace qel
{
namespace
{

/// The text that a function of the system writes into a buffer; empty if it fails. The function takes the buffer and
/// its size, and returns the length of the text, or at least the size if that was too small.
template <class Function>
std::wstring TextFrom(Function myFunction)
{
    constexpr DWORD LongestPath = 32768;
    std::wstring theText(MAX_PATH, L'\0');
    DWORD myLength = myFunction(theText.data(), MAX_PATH);
    if (myLength >= MAX_PATH)
    {
        theText.resize(LongestPath);
        myLength = myFunction(theText.data(), LongestPath);
    }
    theText.resize(myLength < LongestPath ? myLength : 0);
    return theText;
}

/// The path of an existing file with links resolved; empty if the system does not know it.
std::wstring RealPath(const std::wstring& myFile)
{
    const Handle myOpenFile(CreateFileW(myFile.c_str(), FILE_READ_ATTRIBUTES,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return !myOpenFile.IsOpen() ? std::wstring()
                                : TextFrom(
                                      [&](wchar_t* theText, DWORD mySize) {
                                          return GetFinalPathNameByHandleW(myOpenFile.Get(), theText, mySize,
                                                                           FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
                                      });
}

} // namespace

std::wstring NativeComponentFile()
{
    HMODULE myModule = nullptr;
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           reinterpret_cast<const wchar_t*>(&NativeComponentFile), &myModule) == 0)
    {
        return {};
    }
    return TextFrom([&](wchar_t* theText, DWORD mySize) { return GetModuleFileNameW(myModule, theText, mySize); });
}

std::wstring RealFolderOf(const std::wstring& myFile)
{
    const std::wstring myRealPath = RealPath(myFile);
    const std::wstring myPath = PlainPath(myRealPath.empty() ? myFile : myRealPath);
    const size_t myEnd = myPath.rfind(L'\\');
    if (myEnd == std::wstring::npos)
    {
        return {};
    }
    const bool myIsDrive = myEnd == 2 && myPath[1] == L':';
    return myPath.substr(0, myEnd + (myIsDrive ? 1 : 0));
}

} // namespace qel
