#include "platform/windows/folderOwner.h"

#include "platform/windows/Handle.h"
#include "platform/windows/windowsHeaders.h"

#include <aclapi.h>
#include <array>
#include <memory>

namespace qel
{
namespace
{

struct LocalDeleter
{
    void operator()(void* myMemory) const { LocalFree(myMemory); }
};

/// True for the user in whose name the calling thread works.
bool IsCurrentUser(PSID myOwner)
{
    alignas(TOKEN_USER) std::array<std::byte, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> myUser = {};
    DWORD myLength = 0;
    return GetTokenInformation(GetCurrentThreadEffectiveToken(), TokenUser, myUser.data(),
                               static_cast<DWORD>(myUser.size()), &myLength) != 0 &&
           EqualSid(myOwner, reinterpret_cast<const TOKEN_USER*>(myUser.data())->User.Sid) != 0;
}

/// True when the volume of a folder is known to keep no owners.
bool IsOnVolumeWithoutOwners(const std::wstring& myNativeFolder)
{
    const Handle myFolder(CreateFileW(myNativeFolder.c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    DWORD myFlags = 0;
    return myFolder.IsOpen() &&
           GetVolumeInformationByHandleW(myFolder.Get(), nullptr, 0, nullptr, nullptr, &myFlags, nullptr, 0) != 0 &&
           (myFlags & FILE_PERSISTENT_ACLS) == 0;
}

} // namespace

bool BelongsToUser(const std::wstring& myNativeFolder)
{
    if (IsOnVolumeWithoutOwners(myNativeFolder))
    {
        return true;
    }
    PSID myOwner = nullptr;
    PSECURITY_DESCRIPTOR myDescriptor = nullptr;
    const DWORD mySystemError =
        GetNamedSecurityInfoW(myNativeFolder.c_str(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &myOwner, nullptr,
                              nullptr, nullptr, &myDescriptor);
    const std::unique_ptr<void, LocalDeleter> myMemory(myDescriptor);
    return mySystemError == ERROR_SUCCESS && myOwner != nullptr &&
           (IsCurrentUser(myOwner) || IsWellKnownSid(myOwner, WinBuiltinAdministratorsSid) != 0);
}

} // namespace qel
