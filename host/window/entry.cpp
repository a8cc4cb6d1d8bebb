/// The entry point of the host's window module.
#include "platform/linux/toolkit/application.h"
#include "window/LinkDialog.h"
#include "window/linkWindowModule.h"

#include <QApplication>

extern "C" __attribute__((visibility("default"))) bool QelhostShowLinkWindow1(qel::host::LinkChoice& theChoice)
{
    qel::DemandApplication();
    // The component's dialog is in front of it, and accepts no click until this window is closed.
    qel::host::LinkDialog myDialog(theChoice, QApplication::activeModalWidget());
    const bool theAnswer = myDialog.exec() == QDialog::Accepted;
    if (theAnswer)
    {
        myDialog.ReadInto(theChoice);
    }
    return theAnswer;
}
