/// Windows and message boxes of one thread.
#pragma once

#include "dialog/ports/FormMainWindow.h"
#include "platform/MessageBox.h"

namespace qel
{

class WindowService final : public FormMainWindowMaker, public MessageBox
{
public:
    void DemandDisplay() override;
    std::unique_ptr<FormMainWindow> MakeFormMain() override;
    /// Over the active window of the thread, if it has one.
    int32_t MsgBox(TextView myText, int32_t myStyle) override;

private:
    Text myLastFolder; ///< of the last import
};

} // namespace qel
