/// The fixture of the tests of the module in hand: its page, its dialog, and its files.
#pragma once

#include "Environment.h"
#include "FailingFiles.h"
#include "madePictures.h"
#include "platform/shared/SystemPlatform.h"
#include "RecordedWindow.h"
#include "TemporaryFolder.h"
#include "TestHost.h"

#include <gtest/gtest.h>

namespace qel
{

/// A module in hand on real files, with a library of a motif and a tune. Its host has one folder for all files of a
/// build, an archive m.dat, and one record, the file doc.pdf.
class FormTest : public testing::Test
{
protected:
    FormTest()
    {
        myFolder.Write("library/Fiestas/Globo.gif", Gif(40, 30));
        myFolder.Write("library/Fiestas/Vals.mid", "tune");
        myFolder.MakeFolder("site");
        myFolder.MakeFolder("data");
        myHost.BuildInto(myFolder.Logical(u"site\\"));
        myHost.ArchiveName = u"m.dat";
        myHost.DataFolder = myFolder.Logical(u"data\\");
        myHost.RecordType = 5;
        myHost.RecordFilename = u"doc.pdf";
        Restart(u"");
    }

    /// Takes a new record, as a thread does at its start, for the module of a script.
    void Restart(TextView myScript)
    {
        myForm = std::make_unique<FormMain>(myPorts, myConstants, myLead);
        myForm->myBuildHelper = std::make_unique<TestHostServices>(myHost);
        myForm->myDatabase = std::make_unique<TestHostServices>(myHost);
        myForm->Script(myScript);
    }

    /// Opens the dialog on the module and lets a user work in it.
    void Open(std::function<void(FormMainEvents&)> myUser)
    {
        myWindow.User = std::move(myUser);
        FormMainDialog(myPorts, myConstants, myLead, *myForm, myWindow).Show();
    }

    TemporaryFolder myFolder;
    Environment myEnvironment{{TemporaryFolderVariable, myFolder.Native()}};
    TestHost myHost;
    RecordedWindow myWindow;
    std::vector<std::string>& myWords = myWindow.Happened.Words;
    std::unique_ptr<SystemPlatform> mySystem = MakeSystemPlatform();
    Files& myRealFiles = mySystem->Ports().files;
    FailingFiles myFiles{myRealFiles};
    Platform myPorts{myFiles,
                     mySystem->Ports().messages,
                     myWindow,
                     myWindow,
                     myWindow,
                     MakeImagingControl,
                     myFolder.Logical(u"component")};
    localConstants myConstants{myFolder.Logical(u"library\\"), u"help.chm"};
    FormLead myLead{myPorts};
    std::unique_ptr<FormMain> myForm;
};

} // namespace qel
