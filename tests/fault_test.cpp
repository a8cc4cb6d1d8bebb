/// What an operation that fails at any of its steps leaves: its files, locks and settings, and the result it reports.
#include "archive/classArchive.h"
#include "check/system.h"
#include "com/Bstr.h"
#include "com/QelHelperInterfaces.h"
#include "errorOf.h"
#include "failingMemory.h"
#include "FormTest.h"
#include "LoadedComponent.h"

#include <algorithm>
#include <set>

namespace qel
{

const char16_t* const ErrorSource = u"fault_test";

namespace
{

namespace fs = std::filesystem;

using Outcomes = std::set<std::string>;

/// A module with an imported picture and tune in its archive, and what can be done with it. Each operation
/// starts the failures just before the step under test, and returns its outcome in a few words.
class Faults : public FormTest
{
protected:
    /// Makes all files but the library anew, and a record that has the module in hand.
    void Reset()
    {
        for (const auto& myEntry : fs::directory_iterator(myFolder.Native()))
        {
            myEntry.path().filename() == "library" ? 0 : fs::remove_all(myEntry);
        }
        for (const char* const myName : {"data/doc.pdf", "site/x", "qelpluginanimtemp/old"})
        {
            myFolder.Write(myName, "old");
        }
        const auto Number = [](size_t n)
        {
            return std::string{char(n), char(n >> 8), char(n >> 16), 0};
        };
        std::string myArchive = "qelarchive1.0"; // the picture first, which the order of a folder does not promise
        for (const auto& [myName, myContent] : myImports)
        {
            myFolder.Write("base/" + myName, myContent);
            myArchive += Number(myName.size() + 1) + "\\" + myName + Number(myContent.size()) + myContent;
        }
        myFolder.Write("data/m.dat", myArchive + Number(0));
        Restart(u"<pg.file filename=m.dat><pg.param name=image value=qelspr.gif><pg.param name=imagefolder "
                u"value=(USER)><pg.param name=midi value=qelmid.mid><pg.param name=midifolder value=(USER)>"
                u"<pg.param name=imagemode value=gif><pg.param name=midimode value=1><pg.param name=link "
                u"value=UID:7>");
    }

    classArchive& Archive(TextView myBase, Files& thePort)
    {
        classArchive& theArchive = myOpenArchive.emplace(thePort);
        theArchive.BaseFolder(myFolder.Logical(myBase));
        theArchive.ArchiveFilename(myFolder.Logical(u"data\\m.dat"));
        return theArchive;
    }

    /// How many of the imports lie whole in the temporary folder.
    std::string Imports()
    {
        return std::to_string(std::count_if(std::begin(myImports), std::end(myImports),
                                            [&](const auto& i)
                                            { return myFolder.Read("qelpluginanimtemp/" + i.first) == i.second; }));
    }

    std::string ArchiveState()
    {
        const bool myIsOld = myFolder.Read("data/m.dat") == "old";
        return myIsOld ? " old" : Archive(u"", myRealFiles).ReadArchive() ? " whole" : " torn";
    }

    std::string Pack()
    {
        classArchive& theArchive = Archive(u"base", myFiles);
        myFolder.Write("data/m.dat", "old");
        Begin();
        const std::string theResult = theArchive.PackArchive() ? "done" : std::to_string(theArchive.FailureNumber());
        End();
        return theResult + ArchiveState();
    }

    std::string MakePage()
    {
        const Text myScript = myForm->Script();
        Begin();
        const Text myPage = myForm->Output();
        EXPECT_EQ(myForm->Script(), myScript);
        if (myPage == u"[Error de plug-in]")
        {
            const size_t myNumber = myForm->ErrorText().find(u"error \"") + 7;
            return ToUtf8(myForm->ErrorText().substr(myNumber, myForm->ErrorText().find(u':') - myNumber));
        }
        EXPECT_TRUE(myPage.ends_with(u"</script>\r\n"));
        EXPECT_EQ(myForm->ErrorText(), u"");
        EXPECT_EQ(myFolder.Read("site/qelspr1.gif"), myImports[0].second);
        return myFolder.Read("site/qelmid1.mid") == myImports[1].second ? "done" : "done, torn tune";
    }

    std::string Commit()
    {
        RecordedWindow theWindow;
        std::vector<std::string> myDone;
        theWindow.User = [&](FormMainEvents& theEvents)
        {
            myFolder.Write("data/m.dat", "old"); // shorter than what is to come
            Begin();
            theEvents.cmdOK_Click();
            End();
            myDone = theWindow.Happened.Words;
        };
        FormMainDialog(myPorts, myConstants, myLead, *myForm, theWindow).Show();
        const bool myIsConfirmed = myForm->ExitButton == FormMain::Confirmed;
        EXPECT_EQ(myDone == std::vector<std::string>{"Unload"}, myIsConfirmed) << testing::PrintToString(myDone);
        EXPECT_EQ(Imports(), "2") << "after a failure the author can try again";
        return (myIsConfirmed ? "done" : "refused") + ArchiveState();
    }

    std::string Open()
    {
        RecordedWindow theWindow;
        Begin();
        FormMainDialog myDialog(myPorts, myConstants, myLead, *myForm, theWindow);
        const int32_t myError = ErrorOf([&] { myDialog.Show(); });
        const std::vector<Text> myFolders = {u"Fiestas", Text(OwnFileEntry)};
        if (myError == 0)
        {
            EXPECT_EQ(theWindow.cmbImage.Items, myFolders);
            EXPECT_EQ(theWindow.cmbMIDI.Items, myFolders);
        }
        EXPECT_EQ(myForm->Settings().myMIDIMode, myForm->Settings().myImageMode == ImageMode::Gif);
        return myError != 0 ? std::to_string(myError) : myForm->Settings().myMIDIMode ? "done " + Imports() : "empty";
    }

    struct Operation
    {
        std::string (Faults::*Call)();
        Outcomes All; ///< that failing files lead to
    };

    /// Runs an operation on fresh files.
    std::string Run(const Operation& myOperation)
    {
        Reset();
        const int64_t myOpenFiles = host::OpenFileCount();
        const std::string theOutcome = (this->*myOperation.Call)();
        End();
        EXPECT_EQ(host::OpenFileCount(), myOpenFiles) << "a lock goes with its open file";
        return theOutcome;
    }

    const Operation Operations[4] = {
        {&Faults::Pack, {"done whole", "57 old", "57 torn", "57 whole"}},
        {&Faults::MakePage, {"done", "57", "53", "481", "done, torn tune"}},
        {&Faults::Commit, {"done whole", "refused old", "refused torn", "refused whole"}},
        {&Faults::Open, {"done 2", "57", "empty"}},
    };
    const std::pair<std::string, std::string> myImports[2] = {{"qelspr.gif", Gif(120, 80)},
                                                              {"qelmid.mid", std::string(70'000, 'm')}};
    std::optional<classArchive> myOpenArchive;
    std::function<void()> Begin = [] {}, End = Begin;
};

TEST_F(Faults, AnyCallOnFilesFails_IsReportedAndNothingStaysOpen)
{
    for (const Operation& myOperation : Operations)
    {
        Outcomes myOutcomes;
        for (const Fault myFault : {Fault::Once, Fault::ForGood, Fault::Afterwards})
        {
            End = std::bind_front(&FailingFiles::FailAt, &myFiles, 0, myFault);
            int i = 0;
            do
            {
                Begin = std::bind_front(&FailingFiles::FailAt, &myFiles, ++i, myFault);
                myOutcomes.insert(Run(myOperation));
            } while (myFiles.HasFailed);
        }
        EXPECT_EQ(myOutcomes, myOperation.All);
    }
}

TEST_F(Faults, Commit_ProcessKilled_LeavesAModuleThatOpens)
{
    Outcomes myOutcomes;
    std::optional<bool> myIsWhole = false;
    for (int i = 1; myIsWhole == false; ++i)
    {
        Reset();
        Begin = std::bind_front(&FailingFiles::FailAt, &myFiles, i, Fault::Kill);
        myIsWhole = ReachesItsEnd([&] { Commit(); });
        Begin = [] {
        };
        myOutcomes.insert(Open());
    }
    if (!myIsWhole)
    {
        GTEST_SKIP() << "no process can be copied and the copy killed";
    }
    EXPECT_EQ(myOutcomes, (Outcomes{"done 2", "empty"}));
}

TEST_F(Faults, AnyMember_MemoryRunsOut_IsErrorSeven)
{
    const LoadedComponent myComponent(QEL_COMPONENT);
    const auto myClassObject = myComponent.EntryPoint<DllGetClassObjectFunction>("DllGetClassObject");
    ReplaceMemoryFunctionsOf(reinterpret_cast<void*>(myClassObject));
    void* myFactory = nullptr;
    void* myObject = nullptr;
    Bstr myScript(u"<pg.param name=image value=a-long-name.gif><pg.param name=playmidi value=0>");
    Bstr mySummary, myPage, myStored;
    const std::function<HRESULT()> Calls[] = {
        [&] { return myClassObject(CLSID_Main, IID_IClassFactory, &myFactory); },
        [&] { return static_cast<IClassFactory*>(myFactory)->CreateInstance(nullptr, IID_QelPlugin, &myObject); },
        [&] { return static_cast<QelPlugin*>(myObject)->put_Script(myScript.Pointer()); },
        [&] { return static_cast<QelPlugin*>(myObject)->get_TextSettings(mySummary.Pointer()); },
        [&] { return static_cast<QelPlugin*>(myObject)->get_Output(myPage.Pointer()); },
        [&] { return static_cast<QelPlugin*>(myObject)->get_Script(myStored.Pointer()); },
    };
    for (const auto& myCall : Calls)
    {
        std::set<HRESULT> myResults;
        FailEachPieceOfMemory(myCall, [&](HRESULT myResult) { myResults.insert(myResult); });
        EXPECT_EQ(myResults, (std::set<HRESULT>{QEL_RESULT(0x800A0007U), S_OK}));
    }
    EXPECT_NE(myStored.Value().find(u"value=\"a-long-name.gif\""), Text::npos);
    static_cast<QelPlugin*>(myObject)->Release();
    static_cast<IClassFactory*>(myFactory)->Release();
}

} // namespace
} // namespace qel
