#include "platform/linux/WindowModule.h"

#include "platform/linux/toolkit/application.h"
#include "platform/linux/window/dialogs.h"
#include "platform/linux/window/FormWindow.h"
#include "platform/linux/window/MultimediaService.h"

namespace qel
{
namespace
{

class ToolkitModule final : public WindowModule
{
public:
    void DemandDisplay() override { DemandApplication(); }

    std::unique_ptr<FormMainWindow> MakeFormMain() override
    {
        DemandApplication();
        return std::make_unique<FormWindow>();
    }

    int32_t MsgBox(TextView myText, int32_t myStyle) override
    {
        DemandApplication();
        return ShowMessage(nullptr, myText, myStyle);
    }

    void SendMultimediaCommand(TextView myCommand) override { mySound.Send(myCommand); }

    void ProcessPending() override { ProcessPendingEvents(); }

private:
    MultimediaService mySound;
};

} // namespace
} // namespace qel

/// The entry point of the module (see platform/linux/WindowModule.h).
extern "C" __attribute__((visibility("default"))) qel::WindowModule* QelWindowModule(int32_t myVersion) noexcept
{
    // Destroyed at the end of the process, which ends a tune that still plays.
    static qel::ToolkitModule theModule;
    return myVersion == qel::WindowModuleVersion ? &theModule : nullptr;
}
