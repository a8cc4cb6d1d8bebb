#include "platform/linux/LinuxWindows.h"

#include "text/encodings.h"
#include "text/errors.h"

#include <dlfcn.h>
#include <string_view>

namespace qel
{
namespace
{

[[noreturn]] void RaiseModuleMissing(std::string_view myReason)
{
    throw Error{ErrorNumber::FileNotFound,
                u"No se puede cargar el módulo de ventanas " + FromUtf8(WindowModuleFile) + u": " + FromUtf8(myReason)};
}

} // namespace

void LinuxWindows::DemandDisplay()
{
    Module().DemandDisplay();
}

std::unique_ptr<FormMainWindow> LinuxWindows::MakeFormMain()
{
    return Module().MakeFormMain();
}

int32_t LinuxWindows::MsgBox(TextView myText, int32_t myStyle)
{
    return Module().MsgBox(myText, myStyle);
}

void LinuxWindows::SendMultimediaCommand(TextView myCommand)
{
    try
    {
        Module().SendMultimediaCommand(myCommand);
    }
    catch (const Error&)
    {
        // Without the module there is no sound either.
    }
}

void LinuxWindows::ProcessPending()
{
    if (myModule != nullptr)
    {
        myModule->ProcessPending();
    }
}

WindowModule& LinuxWindows::Module()
{
    if (myModule == nullptr)
    {
        void* const myLibrary = dlopen((myFolder + WindowModuleFile).c_str(), RTLD_NOW | RTLD_LOCAL);
        void* const myEntry = myLibrary == nullptr ? nullptr : dlsym(myLibrary, WindowModuleEntryName);
        if (myEntry == nullptr)
        {
            const char* const myReason = dlerror();
            RaiseModuleMissing(myReason == nullptr ? "" : myReason);
        }
        myModule = reinterpret_cast<WindowModuleEntry*>(myEntry)(WindowModuleVersion);
        if (myModule == nullptr)
        {
            RaiseModuleMissing("es de otra versión");
        }
    }
    return *myModule;
}

} // namespace qel
