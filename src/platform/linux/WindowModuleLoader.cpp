#include "platform/linux/WindowModuleLoader.h"

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

void WindowModuleLoader::DemandDisplay()
{
    Module().DemandDisplay();
}

std::unique_ptr<FormMainWindow> WindowModuleLoader::MakeFormMain()
{
    return Module().MakeFormMain();
}

int32_t WindowModuleLoader::MsgBox(TextView myText, int32_t myStyle)
{
    return Module().MsgBox(myText, myStyle);
}

void WindowModuleLoader::SendMultimediaCommand(TextView myCommand)
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

void WindowModuleLoader::ProcessPending()
{
    if (myModule != nullptr)
    {
        myModule->ProcessPending();
    }
}

WindowModule& WindowModuleLoader::Module()
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
