/// Stands for the dialog, the message boxes and the sound, which this edition does not have yet.
#pragma once

#include "dialog/ports/FormMainWindow.h"
#include "platform/MessageBox.h"
#include "platform/Sound.h"
#include "text/errors.h"

namespace qel
{

/// A window or a message box is error 5 with a description that says why. No tune plays.
class MissingWindow final : public FormMainWindowMaker, public MessageBox, public Sound
{
public:
    void DemandDisplay() override { Refuse(); }
    std::unique_ptr<FormMainWindow> MakeFormMain() override { Refuse(); }
    int32_t MsgBox(TextView /*myText*/, int32_t /*myStyle*/) override { Refuse(); }
    void SendMultimediaCommand(TextView /*myCommand*/) override {}

private:
    [[noreturn]] static void Refuse()
    {
        throw Error{ErrorNumber::InvalidArgument, u"Esta edición no incluye el cuadro de diálogo ni los mensajes"};
    }
};

} // namespace qel
