/// Windows, message boxes and sound, from the window module, which is loaded at the first call and not before.
#pragma once

#include "platform/linux/WindowModule.h"

#include <string>
#include <utility>

namespace qel
{

/// Once loaded, the module stays in the process, also when this object and the component are gone.
class WindowModuleLoader final : public WindowModule
{
public:
    /// `myFolderOfModule` is where the module lies: in the system's form, ending in "/".
    explicit WindowModuleLoader(std::string myFolderOfModule) : myFolder(std::move(myFolderOfModule)) {}

    void DemandDisplay() override;
    std::unique_ptr<FormMainWindow> MakeFormMain() override;
    int32_t MsgBox(TextView myText, int32_t myStyle) override;
    void SendMultimediaCommand(TextView myCommand) override;

    /// Loads nothing.
    void ProcessPending() override;

private:
    WindowModule& Module();

    std::string myFolder;
    WindowModule* myModule = nullptr;
};

} // namespace qel
