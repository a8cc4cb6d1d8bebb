/// Lengths, fonts, colours and pictures of the dialog, at the scale of its window.
#pragma once

#include "platform/windows/window/controlHeaders.h"
#include "resources/formLayout.h"

#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

namespace qel
{

/// Owns an object of the system until the end of its life.
template <class SystemHandle, auto Delete>
struct SystemDeleter
{
    using pointer = SystemHandle;
    void operator()(SystemHandle myHandle) const { Delete(myHandle); }
};
template <class SystemHandle, auto Delete>
using Owned = std::unique_ptr<std::remove_pointer_t<SystemHandle>, SystemDeleter<SystemHandle, Delete>>;

using Bitmap = Owned<HBITMAP, &DeleteObject>;
using Font = Owned<HFONT, &DeleteObject>;
using Icon = Owned<HICON, &DestroyIcon>;
using Cursor = Owned<HCURSOR, &DestroyCursor>;
using ImageList = Owned<HIMAGELIST, &ImageList_Destroy>;

/// Turns lengths of the form into pixels of the screen.
class Scale
{
public:
    static constexpr int PlainDpi = 96;

    explicit Scale(UINT myDotsPerInch = PlainDpi) : myDpi(static_cast<int>(myDotsPerInch)) {}

    UINT Dpi() const { return static_cast<UINT>(myDpi); }
    int Twips(int32_t myLength) const { return MulDiv(myLength, myDpi, PlainDpi * TwipsPerPixel); }
    /// `myLength` is in pixels of 96 to the inch.
    int Pixels(int32_t myLength) const { return MulDiv(myLength, myDpi, PlainDpi); }

private:
    int myDpi;
};

/// The size of a text on the screen in a font: in one line or, with `myHasLines`, in lines of that width.
SIZE TextSize(HFONT myFont, const std::wstring& myText, LONG myWidth, bool myHasLines);
/// What a window shows as its text.
std::wstring WindowText(HWND myWindow);

/// Stops the system from enlarging a dialog by itself on a screen with another scale. The older versions that lack this
/// function do not enlarge dialogs.
void KeepLayout(HWND myDialog);

/// The font of the form. A width of 0 is the font's own; another one is that of an average character, in pixels.
Font FormFont(Scale myScale, int32_t myWeight, int myWidth = 0);

/// The font in which a text fits into a room: the form's, or a narrower one if the text needs more room. Of a text in
/// several lines only the height is limited.
Font FittingFont(Scale myScale, int32_t myWeight, const std::wstring& myText, SIZE myRoom, bool myHasLines);

/// The colours of a label, button or box. On a background of its own they are those of the form, or the user's colours
/// for windows in a high-contrast mode; on that of the form they are always the user's. What lies in a box has the
/// background of the box.
COLORREF BackColourOf(const ControlLayout& myLayout);
COLORREF TextColourOf(const ControlLayout& myLayout);

/// A picture of resources/pictures.h, enlarged to a side of `mySide` pixels.
Icon IconOf(std::span<const std::string_view> myRows, int mySide);
/// The pointing hand with its hot spot.
Cursor HandCursor(Scale myScale);
/// The images of the tool bar, transparent where they have the mask colour.
ImageList ToolImages(Scale myScale);

} // namespace qel
