#include "platform/windows/window/controls.h"

#include "platform/PixelPicture.h"
#include "text/errors.h"

#include <algorithm>

namespace qel
{
namespace
{

/// On each side of a picture box, in pixels of 96 to the inch.
constexpr int32_t BorderWidth = 2;

/// The first day that the system's picker can show: the first one of its calendar.
constexpr CalendarDay FirstPickerDay = {1752, 9, 14};

SYSTEMTIME ToSystem(CalendarDay myDay)
{
    SYSTEMTIME theDay = {};
    theDay.wYear = static_cast<WORD>(myDay.Year);
    theDay.wMonth = static_cast<WORD>(myDay.Month);
    theDay.wDay = static_cast<WORD>(myDay.Day);
    return theDay;
}

/// One colour over another, by its alpha.
uint32_t Blend(uint32_t myUpper, uint32_t myLower, uint32_t myAlpha)
{
    return (myUpper * myAlpha + myLower * (255 - myAlpha) + 127) / 255;
}

} // namespace

SystemPreviewBox::SystemPreviewBox(HWND myBox, const ControlLayout& myLayout)
    : myWindow(myBox), myWidth(myLayout.Width / TwipsPerPixel - 2 * BorderWidth),
      myHeight(myLayout.Height / TwipsPerPixel - 2 * BorderWidth),
      myPixels(static_cast<size_t>(myWidth) * static_cast<size_t>(myHeight), White)
{
}

void SystemPreviewBox::Cls()
{
    std::ranges::fill(myPixels, White);
    InvalidateRect(myWindow, nullptr, FALSE);
}

void SystemPreviewBox::PaintPicture(const PixelPicture& myPicture, int32_t myLeft, int32_t myTop)
{
    for (int32_t y = std::max(0, -myTop); y < std::min(myPicture.Height, myHeight - myTop); ++y)
    {
        for (int32_t x = std::max(0, -myLeft); x < std::min(myPicture.Width, myWidth - myLeft); ++x)
        {
            const uint8_t* const mySource =
                &myPicture.Pixels[4 * (static_cast<size_t>(y) * static_cast<size_t>(myPicture.Width) +
                                       static_cast<size_t>(x))];
            uint32_t& theTarget = myPixels[static_cast<size_t>(y + myTop) * static_cast<size_t>(myWidth) +
                                           static_cast<size_t>(x + myLeft)];
            theTarget = Blend(mySource[0], theTarget >> 16U & 0xFFU, mySource[3]) << 16U |
                        Blend(mySource[1], theTarget >> 8U & 0xFFU, mySource[3]) << 8U |
                        Blend(mySource[2], theTarget & 0xFFU, mySource[3]);
        }
    }
    InvalidateRect(myWindow, nullptr, FALSE);
}

void SystemPreviewBox::Show(HDC myTarget, const RECT& myInside) const
{
    BITMAPINFO myInfo = {};
    myInfo.bmiHeader.biSize = sizeof(myInfo.bmiHeader);
    myInfo.bmiHeader.biWidth = myWidth;
    myInfo.bmiHeader.biHeight = -myHeight;
    myInfo.bmiHeader.biPlanes = 1;
    myInfo.bmiHeader.biBitCount = 32;
    SetStretchBltMode(myTarget, HALFTONE);
    SetBrushOrgEx(myTarget, 0, 0, nullptr); // which that mode needs
    StretchDIBits(myTarget, myInside.left, myInside.top, myInside.right - myInside.left, myInside.bottom - myInside.top,
                  0, 0, myWidth, myHeight, myPixels.data(), &myInfo, DIB_RGB_COLORS, SRCCOPY);
}

void SystemButton::Enabled(bool myValue)
{
    if (!myValue && GetFocus() == myWindow)
    {
        SendMessageW(GetParent(myWindow), WM_NEXTDLGCTL, 0, FALSE);
    }
    EnableWindow(myWindow, myValue ? TRUE : FALSE);
}

SystemDatePicker::SystemDatePicker(HWND myPicker) : myWindow(myPicker)
{
    const CalendarDay myFirst =
        DateOfDay(PeriodPickers.First) < DateOfDay(FirstPickerDay) ? FirstPickerDay : PeriodPickers.First;
    SYSTEMTIME myRange[] = {ToSystem(myFirst), ToSystem(PeriodPickers.Last)};
    DateTime_SetRange(myWindow, GDTR_MIN | GDTR_MAX, myRange);
}

std::optional<Date> SystemDatePicker::Value()
{
    SYSTEMTIME myShown = {};
    if (DateTime_GetSystemtime(myWindow, &myShown) != GDT_VALID)
    {
        return std::nullopt;
    }
    const Date myDay = DateOfDay({myShown.wYear, myShown.wMonth, myShown.wDay});
    return DateOfDay(DayOfDate(myDate)) == myDay ? myDate : myDay;
}

void SystemDatePicker::Value(std::optional<Date> myNewDate)
{
    const Date myShown = myNewDate.value_or(myDate); // also without a date the picker shows a day
    SYSTEMTIME myDay = ToSystem(DayOfDate(myShown));
    const bool myIsInRange = myShown >= DateOfDay(FirstPickerDay);
    if (!myIsInRange || DateTime_SetSystemtime(myWindow, myNewDate ? GDT_VALID : GDT_NONE, &myDay) == 0)
    {
        Raise(ErrorNumber::InvalidArgument);
    }
    myDate = myShown;
}

} // namespace qel
