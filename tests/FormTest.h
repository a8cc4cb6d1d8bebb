/// The fixture of the tests that open the dialog's logic on a recorded window.
#pragma once

#include "Environment.h"
#include "madePictures.h"
#include "platform/shared/SystemPlatform.h"
#include "RecordedWindow.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

namespace qel
{

/// A module in hand on real files, with a library of a motif and a tune.
class FormTest : public testing::Test
{
protected:
    FormTest()
    {
        myFolder.Write("library/Fiestas/Globo.gif", Gif(40, 30));
        myFolder.Write("library/Fiestas/Vals.mid", "tune");
    }

    /// Opens the dialog on the module and lets a user work in it.
    void Open(std::function<void(FormMainEvents&)> myUser)
    {
        myWindow.User = std::move(myUser);
        FormMainDialog(myPorts, myConstants, myLead, myForm, myWindow).Show();
    }

    TemporaryFolder myFolder;
    const Environment myEnvironment{{TemporaryFolderVariable, myFolder.Native()}};
    RecordedWindow myWindow;
    std::vector<std::string>& myWords = myWindow.Happened.Words;
    std::unique_ptr<SystemPlatform> mySystem = MakeSystemPlatform();
    Platform myPorts{mySystem->Ports().files, mySystem->Ports().messages, myWindow, myWindow, myWindow,
                     MakeImagingControl,      myFolder.Logical()};
    localConstants myConstants{myFolder.Logical(u"library\\"), u"help.chm"};
    FormLead myLead{myPorts};
    FormMain myForm{myPorts, myConstants, myLead};
};

} // namespace qel
