/// What the component keeps for one thread: its ports, its settings, the module in hand.
#pragma once

#include "module/FormLead.h"
#include "module/FormMain.h"
#include "module/localConstants.h"
#include "platform/shared/SystemPlatform.h"

#include <filesystem>
#include <memory>

namespace qel
{

class Apartment
{
public:
    /// The apartment of the calling thread, made at its first call. It lives until the component is unloaded, and is
    /// destroyed without a call into the host.
    static Apartment& OfThisThread();

    Apartment();
    ~Apartment();
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

    const Platform& Ports() const { return mySystem->Ports(); }

    /// The component's own file as it was loaded: absolute, links not resolved.
    std::filesystem::path ComponentFile() const { return mySystem->ComponentFile(); }

    /// The settings of the running component.
    localConstants myConstants;

    /// The one record of the thread, made at the first call.
    FormMain& Form();

    /// Opens the settings dialog and returns when it is closed. True: it was confirmed. Creates the record first, as
    /// every use of it does. Errors of FormMainWindowMaker::DemandDisplay, with the settings and the temporary folder
    /// unchanged; those of FormMainDialog::Show; 5: the dialog is open already.
    bool ShowDialog();

private:
    std::unique_ptr<SystemPlatform> mySystem;
    FormLead myFormLead;
    std::unique_ptr<FormMain> myFormMain;
    bool myDialogIsOpen = false;
};

} // namespace qel
