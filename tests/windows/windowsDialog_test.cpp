/// What the settings dialog has on this system alone: owners, threads, the calls of the system's functions to the
/// character, and what its window does with scales, colours and long names.
#include "DialogTest.h"
#include "platform/LivingObject.h"
#include "platform/windows/window/controls.h"
#include "Redirection.h"
#include "resources/stringTable.h"

namespace qel
{
namespace
{

TEST_F(DialogTest, Owner_IsTheActiveWindowAndAllAreDisabled)
{
    const auto Look = [](DialogDriver& theUser)
    {
        HWND const myOwner = GetWindow(theUser.Form(), GW_OWNER);
        EXPECT_EQ(DialogDriver::TextOf(myOwner), "host");
        EXPECT_EQ(theUser.Windows().size(), 1U); // the form; the host's windows are disabled
        theUser.Key(Keys::Escape);
    };
    EXPECT_NE(Open("", Look, "owned").find("enabled enabled disabled owner\n"), std::string::npos);
}

TEST_F(DialogTest, Quit_ClosesItAndStaysForTheHost)
{
    const auto Quit = [](DialogDriver& theUser)
    {
        HWND const myOwner = GetWindow(theUser.Form(), GW_OWNER);
        EXPECT_NE(myOwner, nullptr);
        EXPECT_FALSE(IsWindowVisible(myOwner)); // which keeps the form out of the task bar
        EXPECT_EQ(GetWindowLongPtrW(theUser.Form(), GWL_EXSTYLE) & WS_EX_APPWINDOW, 0);
        PostThreadMessageW(theUser.Thread(), WM_QUIT, 7, 0);
    };
    const std::string myResult = Open("", Quit);
    EXPECT_EQ(Stored(myResult, ""), "False");
    EXPECT_NE(myResult.find("same folder\nunloaded\nquit 7\n"), std::string::npos);
}

TEST_F(DialogTest, Threads_EachShowsItsOwn)
{
    const auto ConfirmBoth = [](DialogDriver& theUser)
    {
        theUser.Until("both dialogs show", [&] { return theUser.Windows().size() == 2; });
        for (HWND const myForm : theUser.Windows())
        {
            PostMessageW(GetDlgItem(myForm, IDOK), BM_CLICK, 0, 0);
        }
    };
    EXPECT_EQ(Stored(Open("", ConfirmBoth, "threads"), "image"), "True|Globo.gif");
}

TEST_F(DialogTest, SystemCalls_AreTheDocumentedOnes)
{
    myFolder.Write("large.gif", Gif(400, 20));
    const auto CallEach = [](DialogDriver& theUser)
    {
        theUser.PressTool(2); // stop: nothing has been loaded yet
        theUser.DoubleClick("lstMIDI");
        theUser.Key(Keys::F1);
        theUser.Pick("cmbImageFolder", "(personalizado)");
        theUser.Click("lblImage");
        theUser.Click("cmdOK");
        theUser.Key(Keys::Escape);
    };
    const std::string myResult = Open("", CallEach, "recorded");
    EXPECT_EQ(Stored(myResult, "imagemode"), "False|none");
    EXPECT_NE(myResult.find("same folder\n"), std::string::npos);
    const std::string myCopy = std::filesystem::path(myFolder.Native("tmp")).make_preferred().string() + "\\qelmid.mid";
    EXPECT_EQ(myFolder.Read("calls.txt"),
              "tune open \"" + myCopy +
                  "\" type sequencer alias qelmidi\n"
                  "tune play qelmidi \n"
                  "help QelPluginAnimation.chm 15 100\n"
                  "file Cargar motivo de animación, Todos los formatos de imágenes|*.jpg;*.gif|archivos GIF "
                  "(*.gif)|*.gif| archivos JPEG (*.jpg)|*.jpg|, 524292, 30000, plain\n"
                  "message 33 Tesselwind: El gráfico importado es demasiado grande para poder utilizarlo como motivo "
                  "de animación. ¿Desea disminuir el tamaño del gráfico?\n"
                  "message 64 Tesselwind: Por favor, importe una imagen o seleccione una de la librería.\n"
                  "tune stop qelmidi \n"
                  "tune close qelmidi \n");
}

TEST_F(DialogTest, Open_ADayBeforeTheSystemsCalendar_IsAFailedCall)
{
    EXPECT_EQ(Stored(Open("from=-55000", {}), "from"),
              "error 5 " + ToUtf8(ReplaceAll(LoadResString(StringId::DateNotShown), u"%1", u"30/05/1749")) + "|-55000");
}

/// The window in this process, without the logic.
class FormDialogTest : public testing::Test
{
protected:
    static RECT PlaceOf(HWND myWindow)
    {
        RECT thePlace = {};
        GetWindowRect(myWindow, &thePlace);
        return thePlace;
    }

    FormDialog myDialog;
};

TEST_F(FormDialogTest, ScaleChange_KeepsProportionsPlaceCaptionsAndIcons)
{
    HWND const myImage = myDialog.Control(u"imgMIDI");
    SystemIconImage(myDialog, u"imgMIDI").Icon(InformationIcon);
    for (const WORD myDpi : {WORD{120}, WORD{144}, WORD{192}, WORD{96}})
    {
        SCOPED_TRACE(myDpi);
        const RECT mySuggested = {30, 40, 40, 50};
        SendMessageW(myDialog.Window(), WM_DPICHANGED, MAKEWPARAM(myDpi, myDpi),
                     reinterpret_cast<LPARAM>(&mySuggested));
        EXPECT_EQ(PlaceOf(myDialog.Window()).left, 30);
        EXPECT_EQ(PlaceOf(myDialog.Window()).top, myDpi == 192 ? 0 : 40) << "the screen of the tests is too low";
        for (const ControlLayout& myRow : MainFormControls)
        {
            const RECT myPlace = PlaceOf(myDialog.Control(myRow.Name));
            EXPECT_EQ(myPlace.right - myPlace.left, MulDiv(myRow.Width, myDpi, 15 * 96)) << ToUtf8(myRow.Name);
            EXPECT_EQ(myPlace.bottom - myPlace.top, MulDiv(myRow.Height, myDpi, 15 * 96)) << ToUtf8(myRow.Name);
        }
        for (const TextView myName : {u"Label1", u"Label4", u"Label5", u"lblAnimated", u"cmdSetLink", u"chkImage"})
        {
            HWND const myControl = myDialog.Control(myName);
            const auto myFont = reinterpret_cast<HFONT>(SendMessageW(myControl, WM_GETFONT, 0, 0));
            const RECT myPlace = PlaceOf(myControl);
            EXPECT_LE(TextSize(myFont, WindowText(myControl), 0, false).cx, myPlace.right - myPlace.left)
                << ToUtf8(myName);
        }
        EXPECT_EQ(reinterpret_cast<HICON>(SendMessageW(myImage, STM_GETICON, 0, 0)),
                  myDialog.ImportIcon(InformationIcon));
    }
}

TEST_F(FormDialogTest, Help_ByTheKeyOnTheFormItself)
{
    bool myIsAsked = false;
    myDialog.Reported = [&](const ControlLayout& myControl, UINT /*myNotification*/)
    {
        myIsAsked = myIsAsked || myControl.Name == u"cmdHelp";
    };
    PostMessageW(myDialog.Window(), WM_KEYDOWN, VK_F1, 1);
    PostMessageW(myDialog.Window(), WM_CLOSE, 0, 0);
    myDialog.ShowModally();
    EXPECT_TRUE(myIsAsked);
}

TEST(ScreenReader, Description_KeepsTheComponentLoaded)
{
    CoInitialize(nullptr);
    IAccessible* myDescription = nullptr;
    {
        const FormDialog myDialog;
        AccessibleObjectFromWindow(myDialog.Control(u"lstImage"), static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                                   reinterpret_cast<void**>(&myDescription));
    }
    ASSERT_NE(myDescription, nullptr);
    EXPECT_EQ(LivingObjectCount, 1U);
    myDescription->Release();
    EXPECT_EQ(LivingObjectCount, 0U);
    CoUninitialize();
}

/// In place of SystemParametersInfoW: the user wants a rich contrast.
BOOL WINAPI AnswerHighContrast(UINT /*myQuestion*/, UINT /*mySize*/, void* theAnswer, UINT /*myFlags*/)
{
    static_cast<HIGHCONTRASTW*>(theAnswer)->dwFlags = HCF_HIGHCONTRASTON;
    return TRUE;
}

TEST_F(FormDialogTest, Colours_TextHasThatOfItsBackground)
{
    using Pair = std::pair<COLORREF, COLORREF>;
    const auto ColoursOf = [&](TextView myName)
    {
        HWND const myControl = myDialog.Control(myName);
        HDC const myScreen = GetDC(nullptr);
        SendMessageW(GetParent(myControl), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(myScreen),
                     reinterpret_cast<LPARAM>(myControl));
        const Pair theColours(GetTextColor(myScreen), GetBkColor(myScreen));
        EXPECT_EQ(GetDCBrushColor(myScreen), theColours.second) << ToUtf8(myName);
        ReleaseDC(nullptr, myScreen);
        return theColours;
    };
    const int Which[] = {COLOR_BTNFACE, COLOR_BTNTEXT, COLOR_WINDOW, COLOR_WINDOWTEXT};
    const COLORREF Colours[] = {RGB(0, 0, 80), RGB(255, 255, 0), RGB(0, 0, 0), RGB(0, 255, 0)};
    COLORREF myOld[std::size(Which)];
    std::ranges::transform(Which, myOld, [](int myColour) { return GetSysColor(myColour); });
    SetSysColors(std::size(Which), Which, Colours);
    EXPECT_EQ(ColoursOf(u"Label1"), Pair(RGB(255, 255, 0), RGB(0, 0, 80)));
    EXPECT_EQ(ColoursOf(u"lblAnimated"), Pair(RGB(255, 255, 0), RGB(0, 0, 80)));
    EXPECT_EQ(ColoursOf(u"lblImage"), Pair(RGB(0, 0, 0), RGB(255, 255, 255))) << "a pair of the form";
    EXPECT_EQ(ColoursOf(u"imgImage").second, RGB(255, 255, 255)) << "in the box of that label";
    SendMessageW(myDialog.Window(), WM_SYSCOLORCHANGE, 0, 0);
    HDC const myTarget = CreateCompatibleDC(nullptr);
    const Bitmap myBitmap(CreateBitmap(16, 16, 1, 32, nullptr));
    HGDIOBJ const myOldBitmap = SelectObject(myTarget, myBitmap.get());
    const LRESULT myImages = SendMessageW(myDialog.Control(u"ToolbarPlay"), TB_GETIMAGELIST, 0, 0);
    ImageList_Draw(reinterpret_cast<HIMAGELIST>(myImages), 1, myTarget, 0, 0, ILD_NORMAL);
    EXPECT_EQ(GetPixel(myTarget, 8, 8), RGB(255, 255, 0)) << "the sign of a button";
    SelectObject(myTarget, myOldBitmap);
    DeleteDC(myTarget);
    {
        const Redirection myContrast(L"user32.dll", "SystemParametersInfoW", &AnswerHighContrast);
        EXPECT_EQ(ColoursOf(u"Label1"), Pair(RGB(255, 255, 0), RGB(0, 0, 80)));
        EXPECT_EQ(ColoursOf(u"lblImage"), Pair(RGB(0, 255, 0), RGB(0, 0, 0)));
    }
    SetSysColors(std::size(Which), Which, myOld);
}

TEST_F(FormDialogTest, ToolTip_OfANameThatDoesNotFit)
{
    HWND const myList = myDialog.Control(u"lstImage");
    HWND const myCombo = myDialog.Control(u"cmbImageFolder");
    const Text myLong = u"Un nombre que no cabe en ninguna lista, ni en una caja";
    for (const TextView myName : {TextView(u"Breve"), TextView(myLong)})
    {
        AddEntry(myList, ListMessages, myName);
        AddEntry(myCombo, ComboMessages, myName);
    }
    const auto ToolTipAt = [&](HWND myBox, int myTop)
    {
        SendMessageW(myBox, WM_MOUSEMOVE, 0, MAKELPARAM(20, myTop));
        HWND const myTip = FindWindowExW(nullptr, nullptr, TOOLTIPS_CLASSW, nullptr);
        std::wstring theName(100, L'\0');
        TTTOOLINFOW myTool = {};
        myTool.cbSize = TTTOOLINFOW_V1_SIZE;
        myTool.lpszText = theName.data();
        const LRESULT myIsThere = SendMessageW(myTip, TTM_ENUMTOOLSW, 0, reinterpret_cast<LPARAM>(&myTool));
        return myIsThere == 0 ? std::string() : ToUtf8(TextOfWide(theName.c_str()));
    };
    EXPECT_EQ(ToolTipAt(myList, 20), ToUtf8(myLong));
    EXPECT_EQ(ToolTipAt(myList, 5), "");
    EXPECT_EQ(ToolTipAt(myList, 60), "") << "below the entries";
    SendMessageW(myCombo, CB_SETCURSEL, 1, 0);
    EXPECT_EQ(ToolTipAt(myCombo, 5), ToUtf8(myLong));
    SendMessageW(myCombo, CB_SETCURSEL, 0, 0);
    EXPECT_EQ(ToolTipAt(myCombo, 5), "");
    SendMessageW(myCombo, CB_SHOWDROPDOWN, TRUE, 0);
    EXPECT_GT(SendMessageW(myCombo, CB_GETDROPPEDWIDTH, 0, 0), 217) << "the width of the closed box";
}

TEST(Preview, Scaled_OnlyThePaintingIsEnlarged)
{
    const auto* const myLayout = std::ranges::find(MainFormControls, TextView(u"picPreview"), &ControlLayout::Name);
    SystemPreviewBox theBox(nullptr, *myLayout);
    // Red, and transparent from the middle on; large enough for what a scale blurs at the edges.
    PixelPicture myPicture{20, 10, std::vector<uint8_t>(20 * 10 * 4)};
    for (size_t i = 0; i < 20 * 10; ++i)
    {
        myPicture.Pixels[4 * i] = 255;
        myPicture.Pixels[4 * i + 3] = i % 20 < 10 ? 255 : 0;
    }
    theBox.PaintPicture(myPicture, 100, 50);
    for (const int myPercent : {100, 150, 200})
    {
        HDC const myTarget = CreateCompatibleDC(nullptr);
        HDC const myScreen = GetDC(nullptr);
        const Bitmap myBitmap(CreateCompatibleBitmap(myScreen, 445 * myPercent / 100, 189 * myPercent / 100));
        HGDIOBJ const myOld = SelectObject(myTarget, myBitmap.get());
        theBox.Show(myTarget, {0, 0, 445 * myPercent / 100, 189 * myPercent / 100});
        for (const auto& [myLeft, myTop, myColour] : {std::tuple(102, 52, RGB(255, 0, 0)),
                                                      {107, 57, RGB(255, 0, 0)},
                                                      {112, 55, RGB(255, 255, 255)},
                                                      {97, 55, RGB(255, 255, 255)}})
        {
            EXPECT_EQ(GetPixel(myTarget, myLeft * myPercent / 100, myTop * myPercent / 100), myColour) << myPercent;
        }
        SelectObject(myTarget, myOld);
        ReleaseDC(nullptr, myScreen);
        DeleteDC(myTarget);
    }
}

} // namespace
} // namespace qel
