/// The settings dialog on Windows: the real window in another process, worked by clicks and keys.
#include "DialogDriver.h"
#include "madePictures.h"
#include "platform/windows/window/controls.h"
#include "resources/stringTable.h"

#include <cmath>
#include <oleacc.h>

namespace qel
{
namespace
{

class DialogWindow : public testing::Test
{
protected:
    DialogWindow()
    {
        for (const char* const myFile : {"Fiestas/perla.GIF", "Fiestas/nota.txt", "Fiestas/Vals.mid",
                                         "Solo tonos/Minueto.mid", "animales/perro.gif", "leame.txt"})
        {
            myFolder.Write(std::string("QelPluginAnimationDesigns/") + myFile, "tune");
        }
        myFolder.Write("QelPluginAnimationDesigns/Fiestas/Globo.gif", Gif(40, 30));
        myFolder.Write("QelPluginAnimationDesigns/Fiestas/Vela.azul.gif", Gif(350, 250, {0, 0, 255}, true));
        std::filesystem::copy_file(QEL_STAGE "/QelPluginAnimation.dll", myFolder.Native("QelPluginAnimation.dll"));
        myFolder.MakeFolder("data");
        myFolder.MakeFolder("tmp");
    }

    /// The script of some settings, from "name=value|name=value".
    void Script(const std::string& mySettings, const std::string& myArchive = "") const
    {
        std::string myScript = "<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">";
        myScript += myArchive.empty() ? "" : "<pg.file filename=\"" + myArchive + "\">";
        std::istringstream myRest(mySettings);
        for (std::string myPart; std::getline(myRest, myPart, '|');)
        {
            const size_t mySign = myPart.find('=');
            myScript +=
                "<pg.param name=\"" + myPart.substr(0, mySign) + "\" value=\"" + myPart.substr(mySign + 1) + "\">";
        }
        myFolder.Write("script.txt", myScript);
    }

    /// How the dialog ended, and what its script stores of the settings named, "|" between all.
    static std::string Stored(const std::string& myResult, const std::string& myNames)
    {
        std::string theValues = myResult.substr(0, myResult.find('\n'));
        std::istringstream myRest(myNames);
        for (std::string myName; std::getline(myRest, myName, '|');)
        {
            const std::string myMark = myName == "file" ? "filename=\"" : "name=\"" + myName + "\" value=\"";
            const size_t myPlace = myResult.find(myMark);
            const size_t myStart = myPlace + myMark.size();
            theValues +=
                "|" +
                (myPlace == std::string::npos ? "" : myResult.substr(myStart, myResult.find('"', myStart) - myStart));
        }
        return theValues;
    }

    const TemporaryFolder myFolder;
    const Environment myEnvironment{{"TMP", myFolder.Native("tmp")}};
};

/// The rows of tests/data/form.csv, which describes the form apart from the code, each with its fields.
std::vector<std::vector<std::string>> FormTable()
{
    std::vector<std::vector<std::string>> theRows;
    std::ifstream myFile(QEL_TEST_DATA "/form.csv", std::ios::binary);
    std::string myLine;
    for (std::getline(myFile, myLine); std::getline(myFile, myLine);)
    {
        std::istringstream myRest(myLine + ";");
        theRows.emplace_back();
        for (std::string myField; std::getline(myRest, myField, ';');)
        {
            theRows.back().push_back(myField);
        }
    }
    return theRows;
}

/// A rectangle as text: left, top, width, height.
std::string RectText(int myLeft, int myTop, int myWidth, int myHeight)
{
    return std::to_string(myLeft) + "," + std::to_string(myTop) + " " + std::to_string(myWidth) + "x" +
           std::to_string(myHeight);
}

TEST_F(DialogWindow, Form_IsTheOneOfTheTable)
{
    enum Column
    {
        Tab,
        Name,
        Kind,
        Caption,
        AccessKey,
        Left,
        Top,
        Width,
        Height,
        Parent
    };
    DialogDriver myUser(myFolder);
    HWND const myForm = myUser.Form();
    std::map<int, std::string> myNames;
    for (const std::vector<std::string>& myRow : FormTable())
    {
        SCOPED_TRACE(myRow[Name]);
        HWND const myControl = myUser.Control(FromUtf8(myRow[Name]));
        RECT myPlace = {};
        GetWindowRect(myControl, &myPlace);
        POINT myOrigin = {0, 0};
        RECT myBox = {};
        ClientToScreen(myForm, &myOrigin);
        if (!myRow[Parent].empty())
        {
            GetWindowRect(myUser.Control(FromUtf8(myRow[Parent])), &myBox);
            myOrigin = {myBox.left, myBox.top};
        }
        EXPECT_EQ(RectText(myPlace.left - myOrigin.x, myPlace.top - myOrigin.y, myPlace.right - myPlace.left,
                           myPlace.bottom - myPlace.top),
                  RectText(std::stoi(myRow[Left]) / 15, std::stoi(myRow[Top]) / 15, std::stoi(myRow[Width]) / 15,
                           std::stoi(myRow[Height]) / 15));
        if (!myRow[Caption].empty() && myRow[Caption] != "**") // which an import box replaces
        {
            EXPECT_EQ(DialogDriver::TextOf(myControl), myRow[Caption]);
        }
        const bool myHasFocus = (myRow[Kind] != "label" && myRow[Kind] != "picture box" && myRow[Kind] != "image") ||
                                (myRow[Caption] == "**" && IsWindowVisible(myControl) != 0);
        myHasFocus&& IsWindowEnabled(myControl) != 0 ? void(myNames[std::stoi(myRow[Tab])] = myRow[Name]) : void();
    }
    for (const auto& [myIndex, myName] : myNames)
    {
        EXPECT_EQ(myUser.Focus(), myName);
        myUser.Key(VK_TAB);
    }
    RECT myInside = {};
    GetClientRect(myForm, &myInside);
    EXPECT_EQ(RectText(0, 0, myInside.right, myInside.bottom), "0,0 480x560");
    GetClientRect(myUser.Control(u"picPreview"), &myInside);
    EXPECT_EQ(RectText(0, 0, myInside.right, myInside.bottom), "0,0 445x189");
    const auto myStyle = GetWindowLongPtrW(myForm, GWL_STYLE);
    EXPECT_EQ(myStyle & (WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX),
              WS_CAPTION | WS_SYSMENU);
    RECT myFrame = {};
    GetWindowRect(myForm, &myFrame);
    EXPECT_NEAR(myFrame.left + myFrame.right, GetSystemMetrics(SM_CXSCREEN), 1);
    EXPECT_NEAR(myFrame.top + myFrame.bottom, GetSystemMetrics(SM_CYSCREEN), 1);
    PostMessageW(myForm, WM_CLOSE, 0, 0);
    EXPECT_EQ(Stored(myUser.Result(), "image"), "False|");
}

TEST_F(DialogWindow, Confirm_NewModule_HasTheFirstMotifAndTune)
{
    DialogDriver myUser(myFolder);
    const std::string myFolders = "Fiestas|Solo tonos|animales|leame.txt|(personalizado)";
    EXPECT_EQ(myUser.Entries(u"cmbImageFolder"), myFolders);
    EXPECT_EQ(myUser.Entries(u"cmbMIDIFolder"), myFolders);
    EXPECT_EQ(myUser.Entries(u"lstImage"), "Globo|Vela.azul|perla");
    EXPECT_EQ(myUser.Entries(u"lstMIDI"), "Vals");
    EXPECT_EQ(IsWindowEnabled(myUser.Control(u"cmdUnsetLink")), FALSE);
    myUser.Key(VK_RETURN);
    const std::string myResult = myUser.Result();
    EXPECT_NE(myResult.find("unloaded\n"), std::string::npos);
    EXPECT_EQ(Stored(myResult, "image|imagefolder|midi|midifolder|imagemode|from|to|file|link"),
              "True|Globo.gif|Fiestas|Vals.mid|Fiestas|none|0|0||");
}

TEST_F(DialogWindow, Browse_ShowsListsAndBoxes)
{
    DialogDriver myUser(myFolder);
    EXPECT_EQ(IsWindowVisible(myUser.Control(u"lblAnimated")), FALSE);
    myUser.Pick(u"lstImage", "Vela.azul");
    EXPECT_NE(IsWindowVisible(myUser.Control(u"lblAnimated")), FALSE);
    myUser.Pick(u"cmbImageFolder", "Solo tonos");
    EXPECT_EQ(myUser.Entries(u"lstImage"), "");
    myUser.Pick(u"cmbImageFolder", "(personalizado)");
    EXPECT_EQ(IsWindowVisible(myUser.Control(u"lstImage")), FALSE);
    EXPECT_EQ(DialogDriver::TextOf(myUser.Control(u"lblImage")), ToUtf8(LoadResString(StringId::ImageIsNotImported)));
    myUser.Pick(u"cmbImageFolder", "leame.txt");
    myUser.Pick(u"cmbMIDIFolder", "animales");
    myUser.Click(u"cmdOK");
    EXPECT_EQ(Stored(myUser.Result(), "image|imagefolder|midi|midifolder"), "True|.gif|leame.txt|.mid|animales");
}

TEST_F(DialogWindow, Import_ByTheFileDialog_IsPackedAtTheCommit)
{
    myFolder.Write("mine.gif", Gif(30, 20));
    myFolder.Write("large.jpg", Jpeg(500, 700));
    myFolder.Write("Mine.MID", "my tune");
    const std::string myImageTitle = "Cargar motivo de animación";
    const std::string myTuneTitle = "Cargar sonido de fondo";
    DialogDriver myUser(myFolder);
    myUser.Pick(u"cmbImageFolder", "(personalizado)");
    myUser.Pick(u"cmbMIDIFolder", "(personalizado)");
    myUser.Click(u"cmdOK");
    myUser.AnswerMessage(LoadResString(StringId::ImportImageFirst));
    myUser.Click(u"lblImage");
    myUser.ChooseFile(myImageTitle, myFolder.Native("mine.gif"));
    EXPECT_EQ(DialogDriver::TextOf(myUser.Control(u"lblImage")), ToUtf8(LoadResString(StringId::ImageIsImported)));
    myUser.Click(u"lblImage");
    myUser.ChooseFile(myImageTitle, ""); // keeps what was imported
    myUser.Click(u"cmdOK");
    myUser.AnswerMessage(LoadResString(StringId::ImportMIDIFirst));
    myUser.Click(u"lblImage");
    myUser.ChooseFile(myImageTitle, myFolder.Native("missing.gif")); // which the picture code refuses
    EXPECT_EQ(DialogDriver::TextOf(myUser.Control(u"lblImage")), ToUtf8(LoadResString(StringId::ImageIsNotImported)));
    for (const int myAnswer : {IDCANCEL, IDOK})
    {
        myUser.Click(u"lblImage");
        myUser.ChooseFile(myImageTitle, myFolder.Native("large.jpg"));
        myUser.AnswerMessage(LoadResString(StringId::ImageIsTooLarge), true, myAnswer);
    }
    myUser.Click(u"lblMIDI");
    myUser.ChooseFile(myTuneTitle, myFolder.Native("Mine.MID"));
    myUser.TabTo(u"chkMIDI");
    SendMessageW(myUser.Control(u"chkMIDI"), BM_CLICK, 0, 0);
    myUser.Key(VK_RETURN);
    EXPECT_EQ(
        Stored(myUser.Result(), "image|imagefolder|midi|midifolder|imagemode|midimode|showimage|playmidi|file|link"),
        "True|qelspr.jpg|(USER)|qelmid.mid|(USER)|jpg|1|1|0|m7.dat|");
    const std::string myArchive = myFolder.Read("data/m7.dat");
    EXPECT_NE(myArchive.find("qelspr.jpg"), std::string::npos);
    EXPECT_NE(myArchive.find("my tune"), std::string::npos);
    EXPECT_EQ(myArchive.find("qelspr.gif"), std::string::npos);
    EXPECT_NE(myFolder.Read("result.txt").find("same folder"), std::string::npos);
}

TEST_F(DialogWindow, LinkAndPeriod_TakeEffectInTheirTime)
{
    Script("link=URL:old|from=40000|to=39999");
    DialogDriver myUser(myFolder);
    myUser.Click(u"cmdUnsetLink");
    EXPECT_EQ(IsWindowEnabled(myUser.Control(u"cmdUnsetLink")), FALSE);
    EXPECT_NE(myUser.Focus(), "");
    myUser.Click(u"cmdSetLink");
    EXPECT_NE(IsWindowEnabled(myUser.Control(u"cmdUnsetLink")), FALSE);
    EXPECT_EQ(DialogDriver::TextOf(myUser.Control(u"DateFrom")), "06/07/2009");
    myUser.Click(u"cmdOK");
    myUser.AnswerMessage(LoadResString(StringId::PeriodIsReversed));
    myUser.TabTo(u"DateTo");
    myUser.Key(VK_RIGHT); // from the check box to the day
    myUser.Key(VK_UP);
    EXPECT_EQ(DialogDriver::TextOf(myUser.Control(u"DateTo")), "06/07/2009");
    myUser.Click(u"cmdOK");
    EXPECT_EQ(Stored(myUser.Result(), "link|from|to"), "True|URL:http://example.org/|40000|40000");
}

TEST_F(DialogWindow, Open_ADayBeforeTheSystemsCalendar_IsNamed)
{
    Script("from=-55000"); // in 1749
    const Text myReason = ReplaceAll(LoadResString(StringId::DateNotShown), u"%1", u"30/05/1749");
    const std::string myResult = DialogDriver(myFolder).Result();
    EXPECT_EQ(myResult.substr(0, myResult.find('\n')), "error 5 " + ToUtf8(myReason));
}

TEST_F(DialogWindow, Enter_ConfirmsExceptOnAnotherButton)
{
    for (const TextView myPlace : {u"cmbImageFolder", u"lstMIDI", u"chkImage", u"cmdSetLink", u"DateTo", u"cmdCancel",
                                   u"ToolbarPlay", u"lblImage"})
    {
        SCOPED_TRACE(ToUtf8(myPlace));
        Script("link=URL:x|from=1|to=1|imagefolder=(USER)|imagemode=gif");
        DialogDriver myUser(myFolder);
        myUser.TabTo(myPlace);
        myUser.Key(VK_RETURN);
        myPlace == u"lblImage" ? myUser.ChooseFile("Cargar motivo de animación", "") : void();
        const bool myCloses = myPlace.starts_with(u"cmb") || myPlace.starts_with(u"lst") ||
                              myPlace.starts_with(u"chk") || myPlace.starts_with(u"Date");
        myCloses || myPlace == u"cmdCancel" ? void() : myUser.Key(VK_ESCAPE);
        EXPECT_EQ(myUser.Result().substr(0, 4), myCloses ? "True" : "Fals");
    }
}

TEST_F(DialogWindow, ScreenReader_EveryControlWithFocusHasAName)
{
    const std::pair<TextView, const char*> Names[] = {
        {u"cmbImageFolder", "Carpeta de motivos"},
        {u"cmbMIDIFolder", "Carpeta de músicas"},
        {u"lstImage", "Motivos"},
        {u"lstMIDI", "Músicas"},
        {u"chkImage", "Reproducir animación"},
        {u"cmdSetLink", "Determinar vínculo"},
        {u"DateFrom", "Representación desde"},
        {u"DateTo", "Representación hasta"},
        {u"ToolbarPlay", "Reproducción de la música"},
        {u"picPreview", "Vista previa"},
        {u"picImage", "Importación de un motivo"},
        {u"lblImage", "Haga clic aquí para importar otra imagen en formato JPEG o GIF como motivo."},
    };
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    Script("imagefolder=(USER)|imagemode=gif");
    DialogDriver myUser(myFolder);
    for (const auto& [myControl, myName] : Names)
    {
        IAccessible* myDescription = nullptr;
        ASSERT_EQ(AccessibleObjectFromWindow(myUser.Control(myControl), static_cast<DWORD>(OBJID_CLIENT),
                                             IID_IAccessible, reinterpret_cast<void**>(&myDescription)),
                  S_OK);
        VARIANT mySelf = {};
        mySelf.vt = VT_I4;
        BSTR myText = nullptr;
        EXPECT_EQ(myDescription->get_accName(mySelf, &myText), S_OK);
        EXPECT_EQ(ToUtf8(TextOfWide(myText == nullptr ? L"" : myText)), myName);
        SysFreeString(myText);
        myDescription->Release();
    }
    myUser.Key(VK_ESCAPE);
    EXPECT_EQ(Stored(myUser.Result(), "imagemode"), "False|gif");
    CoUninitialize();
}

TEST_F(DialogWindow, Owner_IsTheActiveWindowAndAllAreDisabled)
{
    DialogDriver myUser(myFolder, "owned");
    HWND const myOwner = GetWindow(myUser.Form(), GW_OWNER);
    EXPECT_EQ(DialogDriver::TextOf(myOwner), "host");
    EXPECT_EQ(myUser.Windows().size(), 1U); // the form; the host's windows are disabled
    myUser.Key(VK_ESCAPE);
    EXPECT_NE(myUser.Result().find("enabled\nowner\n"), std::string::npos);
}

TEST_F(DialogWindow, Owner_IsHiddenWithoutAWindowOfTheHost)
{
    DialogDriver myUser(myFolder);
    HWND const myOwner = GetWindow(myUser.Form(), GW_OWNER);
    EXPECT_NE(myOwner, nullptr);
    EXPECT_EQ(IsWindowVisible(myOwner), FALSE);
    EXPECT_EQ(GetWindowLongPtrW(myUser.Form(), GWL_EXSTYLE) & WS_EX_APPWINDOW, 0);
}

TEST_F(DialogWindow, Quit_ClosesItAndStaysForTheHost)
{
    DialogDriver myUser(myFolder);
    myUser.Form();
    PostThreadMessageW(myUser.Thread(), WM_QUIT, 7, 0);
    const std::string myResult = myUser.Result();
    EXPECT_EQ(Stored(myResult, "image"), "False|");
    EXPECT_NE(myResult.find("quit 7\n"), std::string::npos);
}

TEST_F(DialogWindow, Threads_EachShowsItsOwn)
{
    DialogDriver myUser(myFolder, "threads");
    myUser.Until("both dialogs show", [&] { return myUser.Windows().size() == 2; });
    for (HWND const myForm : myUser.Windows())
    {
        PostMessageW(GetDlgItem(myForm, IDOK), BM_CLICK, 0, 0);
    }
    EXPECT_EQ(Stored(myUser.Result(), "image"), "True|Globo.gif");
}

TEST_F(DialogWindow, Play_SendsTheCommandsToTheByte)
{
    const std::string myCopy = std::filesystem::path(myFolder.Native("tmp")).make_preferred().string() + "\\qelmid.mid";
    const std::string myStopping = "stop qelmidi |close qelmidi |";
    const std::string myPlaying = "open \"" + myCopy + "\" type sequencer alias qelmidi|play qelmidi |";
    DialogDriver myUser(myFolder, "tunes");
    HWND const myToolBar = myUser.Control(u"ToolbarPlay");
    DialogDriver::ClickAt(myToolBar, 30, 10); // stop: nothing has been loaded yet
    HWND const myList = myUser.Control(u"lstMIDI");
    SendMessageW(myList, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(20, 5));
    EXPECT_EQ(myFolder.Read("tmp/qelmid.mid"), "tune");
    DialogDriver::ClickAt(myToolBar, 30, 10);
    myUser.Pick(u"cmbMIDIFolder", "animales");
    SendMessageW(myList, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(20, 50)); // in the empty list
    EXPECT_FALSE(myFolder.Exists("tmp/qelmid.mid"));
    DialogDriver::ClickAt(myToolBar, 5, 10);
    myUser.Key(VK_ESCAPE);
    myUser.Result();
    EXPECT_EQ(myFolder.Read("commands.txt"),
              myPlaying + myStopping + myStopping + myPlaying + myStopping + myPlaying + myStopping);
}

TEST_F(DialogWindow, About_ShowsTheComponentAndUnloads)
{
    DialogDriver myUser(myFolder, "about");
    myUser.AnswerMessage(JoinTexts(
        {u"Tesselwind 1.0.19\r\n\r\n", ComponentVersion.FileDescription, u"\r\n\r\n", ComponentVersion.Copyright}));
    EXPECT_EQ(myUser.Result(), "shown\nsame folder\nunloaded\n");
}

/// A colour of the preview as it shows at a scale in percent.
TEST(Preview, Scaled_OnlyThePaintingIsEnlarged)
{
    const auto* const myLayout = std::ranges::find(MainFormControls, TextView(u"picPreview"), &ControlLayout::Name);
    SystemPreviewBox theBox(nullptr, *myLayout);
    EXPECT_EQ(RectText(0, 0, theBox.ScaleWidth(), theBox.ScaleHeight()), "0,0 445x189");
    // Red, and transparent from the middle on; large enough for what a scale blurs at the edges.
    PixelPicture myPicture{20, 10, std::vector<uint8_t>(20 * 10 * 4)};
    for (size_t i = 0; i < 20 * 10; ++i)
    {
        myPicture.Pixels[4 * i] = 255;
        myPicture.Pixels[4 * i + 3] = i % 20 < 10 ? 255 : 0;
    }
    for (const int myPercent : {100, 150, 200})
    {
        theBox.Cls();
        theBox.PaintPicture(myPicture, 100, 50);
        HDC const myTarget = CreateCompatibleDC(nullptr);
        HDC const myScreen = GetDC(nullptr);
        const Bitmap myBitmap(CreateCompatibleBitmap(myScreen, 445 * myPercent / 100, 189 * myPercent / 100));
        HGDIOBJ const myOld = SelectObject(myTarget, myBitmap.get());
        theBox.Show(myTarget, {0, 0, 445 * myPercent / 100, 189 * myPercent / 100});
        const auto At = [&](int myLeft, int myTop)
        {
            return GetPixel(myTarget, myLeft * myPercent / 100, myTop * myPercent / 100);
        };
        EXPECT_EQ(At(102, 52), RGB(255, 0, 0)) << myPercent;
        EXPECT_EQ(At(107, 57), RGB(255, 0, 0)) << myPercent;
        EXPECT_EQ(At(112, 55), RGB(255, 255, 255)) << myPercent;
        EXPECT_EQ(At(97, 55), RGB(255, 255, 255)) << myPercent;
        SelectObject(myTarget, myOld);
        ReleaseDC(nullptr, myScreen);
        DeleteDC(myTarget);
    }
}

} // namespace
} // namespace qel
