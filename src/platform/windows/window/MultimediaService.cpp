#include "platform/windows/window/MultimediaService.h"

#include "platform/codePage.h"

namespace qel
{

void MultimediaService::SendMultimediaCommand(TextView myCommand)
{
    if (mySend == nullptr)
    {
        if (!myCommand.starts_with(u"open "))
        {
            return;
        }
        HMODULE const myLibrary = LoadLibraryExW(L"winmm.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
        const FARPROC myAddress = myLibrary == nullptr ? nullptr : GetProcAddress(myLibrary, "mciSendStringA");
        mySend = reinterpret_cast<SendFunction>(reinterpret_cast<void*>(myAddress));
    }
    const std::optional<std::string> myBytes = ToAnsi(myCommand);
    if (mySend != nullptr && myBytes)
    {
        mySend(myBytes->c_str(), nullptr, 0, nullptr);
    }
}

} // namespace qel
