/// The entry point of the host's window module.
#include "platform/linux/toolkit/application.h"
#include "window/linkWindowModule.h"
#include "window/linux/LinkDialog.h"

#include <QApplication>

namespace qel::host
{

extern "C" __attribute__((visibility("default"))) LinkWindowEnd QelhostShowLinkWindow2(LinkChoice& theChoice,
                                                                                       Error& theFailure)
{
    try
    {
        DemandApplication();
        // The component's dialog owns this window, and accepts no click until it is closed.
        LinkDialog myDialog(theChoice, QApplication::activeModalWidget());
        if (myDialog.exec() != QDialog::Accepted)
        {
            return LinkWindowEnd::Cancelled;
        }
        myDialog.ReadInto(theChoice);
        return LinkWindowEnd::Confirmed;
    }
    catch (...)
    {
        theFailure = CurrentError();
        return LinkWindowEnd::Failed;
    }
}

} // namespace qel::host
