#include "platform/windows/window/appearance.h"

#include "platform/windows/wideText.h"
#include "resources/pictures.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace qel
{
namespace
{

constexpr int PointsPerInch = 72;
constexpr uint32_t Opaque = 0xFF000000;

bool ContrastIsHigh()
{
    HIGHCONTRASTW mySetting = {};
    mySetting.cbSize = sizeof(mySetting);
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(mySetting), &mySetting, 0) != 0 &&
           (mySetting.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

/// 0xRRGGBB as the system writes it.
COLORREF ToSystem(uint32_t myColour)
{
    return RGB(myColour >> 16U & 0xFFU, myColour >> 8U & 0xFFU, myColour & 0xFFU);
}

uint32_t FromSystem(COLORREF myColour)
{
    return static_cast<uint32_t>(GetRValue(myColour)) << 16U | static_cast<uint32_t>(GetGValue(myColour)) << 8U |
           GetBValue(myColour);
}

/// A bitmap of 32 bits a pixel, and its pixels from top to bottom.
struct PixelBitmap
{
    Bitmap Handle;
    std::span<uint32_t> Pixels;
};

PixelBitmap MakePixelBitmap(int mySide)
{
    BITMAPINFO myInfo = {};
    myInfo.bmiHeader.biSize = sizeof(myInfo.bmiHeader);
    myInfo.bmiHeader.biWidth = mySide;
    myInfo.bmiHeader.biHeight = -mySide;
    myInfo.bmiHeader.biPlanes = 1;
    myInfo.bmiHeader.biBitCount = 32;
    void* myBits = nullptr;
    PixelBitmap theBitmap{Bitmap(CreateDIBSection(nullptr, &myInfo, DIB_RGB_COLORS, &myBits, nullptr, 0)), {}};
    if (theBitmap.Handle)
    {
        theBitmap.Pixels = {static_cast<uint32_t*>(myBits), static_cast<size_t>(mySide) * static_cast<size_t>(mySide)};
    }
    return theBitmap;
}

/// Draws a picture at the size of a bitmap. Its transparent pixels become `myMask`, its black ones `myBlack`.
void Draw(const PixelBitmap& theBitmap, std::span<const std::string_view> myRows, uint32_t myMask, uint32_t myBlack)
{
    const auto mySide = static_cast<size_t>(std::lround(std::sqrt(static_cast<double>(theBitmap.Pixels.size()))));
    for (size_t i = 0; i < theBitmap.Pixels.size(); ++i)
    {
        const size_t myRow = i / mySide * myRows.size() / mySide;
        const char mySign = myRows[myRow][i % mySide * myRows.size() / mySide];
        const auto* const myColour = std::ranges::find(PixelColours, mySign, &PixelColour::Sign);
        const uint32_t myOwn = myColour == PixelColours.end() ? myMask : Opaque | myColour->Colour;
        theBitmap.Pixels[i] = myOwn == (Opaque | Black) ? Opaque | myBlack : myOwn;
    }
}

/// An icon, or a cursor if it has a hot spot.
HICON MakeIcon(std::span<const std::string_view> myRows, int mySide, std::optional<POINT> myHotSpot)
{
    const PixelBitmap myColours = MakePixelBitmap(mySide);
    Draw(myColours, myRows, 0, Black);
    // Where the mask has a one, the picture is transparent. Each row of it begins at an even byte.
    const size_t myRowBytes = (static_cast<size_t>(mySide) + 15) / 16 * 2;
    std::vector<uint8_t> myBits(myRowBytes * static_cast<size_t>(mySide));
    for (size_t i = 0; i < myColours.Pixels.size(); ++i)
    {
        const size_t myColumn = i % static_cast<size_t>(mySide);
        if (myColours.Pixels[i] == 0)
        {
            myBits[i / static_cast<size_t>(mySide) * myRowBytes + myColumn / 8] |=
                static_cast<uint8_t>(0x80U >> myColumn % 8);
        }
    }
    const Bitmap myMask(CreateBitmap(mySide, mySide, 1, 1, myBits.data()));
    ICONINFO myInfo = {};
    myInfo.fIcon = myHotSpot ? FALSE : TRUE;
    myInfo.xHotspot = myHotSpot ? static_cast<DWORD>(myHotSpot->x) : 0;
    myInfo.yHotspot = myHotSpot ? static_cast<DWORD>(myHotSpot->y) : 0;
    myInfo.hbmMask = myMask.get();
    myInfo.hbmColor = myColours.Handle.get();
    return CreateIconIndirect(&myInfo);
}

int AverageWidth(HFONT myFont)
{
    HDC const myScreen = GetDC(nullptr);
    HGDIOBJ const myOld = SelectObject(myScreen, myFont);
    TEXTMETRICW myMetrics = {};
    GetTextMetricsW(myScreen, &myMetrics);
    SelectObject(myScreen, myOld);
    ReleaseDC(nullptr, myScreen);
    return static_cast<int>(myMetrics.tmAveCharWidth);
}

} // namespace

SIZE TextSize(HFONT myFont, const std::wstring& myText, LONG myWidth, bool myHasLines)
{
    HDC const myScreen = GetDC(nullptr);
    HGDIOBJ const myOld = SelectObject(myScreen, myFont);
    RECT theRoom = {0, 0, myWidth, 0};
    DrawTextW(myScreen, myText.c_str(), -1, &theRoom,
              DT_CALCRECT | DT_NOPREFIX | (myHasLines ? DT_WORDBREAK : DT_SINGLELINE));
    SelectObject(myScreen, myOld);
    ReleaseDC(nullptr, myScreen);
    return {theRoom.right, theRoom.bottom};
}

std::wstring WindowText(HWND myWindow)
{
    std::wstring theText(static_cast<size_t>(GetWindowTextLengthW(myWindow)), L'\0');
    GetWindowTextW(myWindow, theText.data(), static_cast<int>(theText.size()) + 1);
    return theText;
}

void KeepLayout(HWND myDialog)
{
    using Function = BOOL(WINAPI*)(HWND, int myMask, int myValues);
    constexpr int DisableAll = 1;
    const FARPROC myAddress = GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetDialogDpiChangeBehavior");
    if (const auto myFunction = reinterpret_cast<Function>(reinterpret_cast<void*>(myAddress)))
    {
        myFunction(myDialog, DisableAll, DisableAll);
    }
}

Font FormFont(Scale myScale, int32_t myWeight, int myWidth)
{
    const int myHeight =
        static_cast<int>(std::lround(MainFormLayout.FontPoints * static_cast<double>(myScale.Dpi()) / PointsPerInch));
    return Font(CreateFontW(-myHeight, myWidth, 0, 0, myWeight, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                            OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH | FF_SWISS,
                            WideText(MainFormLayout.FontName).c_str()));
}

Font FittingFont(Scale myScale, int32_t myWeight, const std::wstring& myText, SIZE myRoom, bool myHasLines)
{
    constexpr int LeastWidth = 2;
    const auto Fits = [&](HFONT myFont)
    {
        const SIZE myNeed = TextSize(myFont, myText, myRoom.cx, myHasLines);
        return myHasLines ? myNeed.cy <= myRoom.cy : myNeed.cx <= myRoom.cx;
    };
    Font theFont = FormFont(myScale, myWeight);
    for (int myWidth = AverageWidth(theFont.get()) - 1; myWidth >= LeastWidth && !Fits(theFont.get()); --myWidth)
    {
        theFont = FormFont(myScale, myWeight, myWidth);
    }
    return theFont;
}

COLORREF BackColourOf(const ControlLayout& myLayout)
{
    const auto* const myBox = std::ranges::find(MainFormControls, myLayout.Parent, &ControlLayout::Name);
    const uint32_t myColour = myBox == MainFormControls.end() ? myLayout.BackColour : myBox->BackColour;
    if (myColour == Face)
    {
        return GetSysColor(COLOR_BTNFACE);
    }
    return ContrastIsHigh() ? GetSysColor(COLOR_WINDOW) : ToSystem(myColour);
}

COLORREF TextColourOf(const ControlLayout& myLayout)
{
    if (myLayout.BackColour == Face)
    {
        return GetSysColor(COLOR_BTNTEXT);
    }
    return ContrastIsHigh() ? GetSysColor(COLOR_WINDOWTEXT) : ToSystem(myLayout.ForeColour);
}

Icon IconOf(std::span<const std::string_view> myRows, int mySide)
{
    return Icon(MakeIcon(myRows, mySide, std::nullopt));
}

Cursor HandCursor(Scale myScale)
{
    const POINT myHotSpot = {myScale.Pixels(HandLeft), myScale.Pixels(HandTop)};
    return Cursor(MakeIcon(HandPicture, myScale.Pixels(static_cast<int32_t>(HandPicture.size())), myHotSpot));
}

ImageList ToolImages(Scale myScale)
{
    const int mySide = myScale.Twips(ToolImageSide);
    const uint32_t myBlack = FromSystem(GetSysColor(COLOR_BTNTEXT)); // as the tool bar has the system's background
    ImageList theList(ImageList_Create(mySide, mySide, ILC_COLOR24 | ILC_MASK, 2, 0));
    for (const PixelMap<16>* const myPicture : {&PlayPicture, &StopPicture})
    {
        const PixelBitmap myImage = MakePixelBitmap(mySide);
        Draw(myImage, *myPicture, MaskColour, myBlack);
        std::ranges::for_each(myImage.Pixels, [](uint32_t& p) { p &= ~Opaque; }); // a colour alone can match the mask's
        ImageList_AddMasked(theList.get(), myImage.Handle.get(), ToSystem(MaskColour));
    }
    return theList;
}

} // namespace qel
