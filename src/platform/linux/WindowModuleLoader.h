/// Windows, message boxes and sound, from the window module, which is loaded by the first call that needs it.
#pragma once

#include "platform/linux/WindowModule.h"

#include <string>
#include <utility>

namespace qel
{

/// Once loaded, the module stays in the process, even after this object is destroyed and the component unloaded.
class WindowModuleLoader final : public WindowModule
{
public:
    /// `myFolderOfModule` contains the module: in the system's form, ending in "/".
    explicit WindowModuleLoader(std::string myFolderOfModule) : myFolder(std::move(myFolderOfModule)) {}

    void DemandDisplay() override;
    std::unique_ptr<FormMainWindow> MakeFormMain() override;
    int32_t MsgBox(TextView myText, int32_t myStyle) override;
    void SendMultimediaCommand(TextView myCommand) override;

    /// Does not load the module.
    void ProcessPending() override;

private:
    WindowModule& Module();

    std::string myFolder;
    WindowModule* myModule = nullptr;
};

} // namespace qel
