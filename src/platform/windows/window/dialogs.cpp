#include "platform/windows/window/dialogs.h"

#include "platform/windows/wideText.h"
#include "platform/windows/window/ComponentStyle.h"
#include "resources/stringTable.h"
#include "text/errors.h"

#include <algorithm>
#include <vector>

namespace qel
{
namespace
{

/// The folder in which the process looks for files with relative names.
std::wstring CurrentFolder()
{
    std::wstring theFolder(GetCurrentDirectoryW(0, nullptr), L'\0');
    theFolder.resize(GetCurrentDirectoryW(static_cast<DWORD>(theFolder.size()), theFolder.data()));
    return theFolder;
}

} // namespace

int32_t ShowMessage(HWND myOwner, TextView myText, int32_t myStyle)
{
    const ComponentStyle myLook;
    const int theAnswer = MessageBoxW(myOwner, WideText(myText).c_str(), WideText(ComponentVersion.Title).c_str(),
                                      static_cast<UINT>(myStyle));
    if (theAnswer == 0)
    {
        throw Error{ErrorNumber::DeviceError, u"El sistema no puede mostrar un mensaje"};
    }
    return theAnswer == IDOK ? PressedOK : PressedCancel;
}

std::optional<Text> ShowOpenDialog(HWND myOwner, const FileDialogSettings& mySettings, Text& theFolder)
{
    // The system wants a zero after each part of the filter, and another one at the end.
    std::wstring myFilter = WideText(mySettings.Filter) + L"||";
    std::ranges::replace(myFilter, L'|', L'\0');
    const std::wstring myTitle = WideText(mySettings.DialogTitle);
    const std::wstring myStart = WideText(theFolder);
    const std::wstring myCurrentFolder = CurrentFolder();
    std::vector<wchar_t> myFile(static_cast<size_t>(mySettings.MaxFileSize));

    OPENFILENAMEW mySetting = {};
    mySetting.lStructSize = sizeof(mySetting);
    mySetting.hwndOwner = myOwner;
    mySetting.lpstrFilter = myFilter.c_str();
    mySetting.lpstrFile = myFile.data();
    mySetting.nMaxFile = static_cast<DWORD>(myFile.size());
    mySetting.lpstrInitialDir = myStart.empty() ? nullptr : myStart.c_str();
    mySetting.lpstrTitle = myTitle.c_str();
    mySetting.Flags = mySettings.Flags;
    const ComponentStyle myLook;
    const bool myIsChosen = GetOpenFileNameW(&mySetting) != 0;
    SetCurrentDirectoryW(myCurrentFolder.c_str());
    if (!myIsChosen)
    {
        return std::nullopt;
    }
    Text theFile = TextOfWide(myFile.data());
    theFolder = theFile.substr(0, theFile.find_last_of(u'\\') + 1);
    return theFile;
}

} // namespace qel
