/// The settings dialog as data: every control with its position, texts and appearance. Lengths are in twips, 15 to the
/// pixel.
#pragma once

#include "text/dates.h"
#include "text/text.h"

#include <array>
#include <cstdint>

namespace qel
{

enum class ControlKind : uint8_t
{
    ComboBox,   ///< for selecting, not for typing
    PictureBox, ///< sunken border
    ListBox,    ///< one selection, unsorted
    CheckBox,
    Button,
    DatePicker, ///< with a check box
    Label,
    ToolBar,
    Image
};

/// The special properties of a control.
enum class ControlTrait : uint8_t
{
    None,
    DefaultButton, ///< Enter presses it
    CancelButton,  ///< Escape presses it
    HandCursor     ///< can be clicked, and shows the pointing hand of pictures.h
};

/// Colours are 0xRRGGBB.
inline constexpr uint32_t White = 0xFFFFFF;
inline constexpr uint32_t Black = 0x000000;
inline constexpr uint32_t Face = 0xEFEFEF; ///< of the form, and of controls without a background of their own

/// Weights of the font.
inline constexpr int32_t Regular = 400;
inline constexpr int32_t Bold = 700;

enum class TextSide : uint8_t
{
    Left,
    Right
};

/// One control. `Parent` is the picture box that contains it, or empty; its position is relative to the outer corner of
/// that box, border included. The colours apply to boxes and labels; lists and buttons have the toolkit's colours.
struct ControlLayout
{
    int32_t TabIndex; ///< -1: none
    TextView Name;
    ControlKind Kind;
    TextView Caption; ///< "&" marks the next letter as the access key
    int32_t Left;
    int32_t Top;
    int32_t Width;
    int32_t Height;
    TextView Parent;
    ControlTrait Trait;
    TextView AccessibleName; ///< its name for a screen reader if the caption does not give it
    uint32_t BackColour = Face;
    uint32_t ForeColour = Black;
    int32_t FontWeight = Regular;
    TextSide Side = TextSide::Left;
};

inline constexpr int32_t TwipsPerPixel = 15;

struct FormLayout
{
    TextView Name = u"FormMain";
    TextView Caption = u"Tesselwind";
    int32_t ClientWidth = 7200;
    int32_t ClientHeight = 8400;
    int32_t HelpContextID = 100;
    TextView FontName = u"Tahoma";
    double FontPoints = 8.25; ///< 11 pixels
    uint32_t BackColour = Face;
    uint32_t ForeColour = Black;
};

inline constexpr FormLayout MainFormLayout;

/// In tab order; the two images, which have none, last.
inline constexpr std::array<ControlLayout, 27> MainFormControls = {{
    {0, u"cmbImageFolder", ControlKind::ComboBox, u"", 240, 480, 3255, 315, u"", ControlTrait::None, u"Motivo:"},
    {1, u"cmbMIDIFolder", ControlKind::ComboBox, u"", 3720, 480, 3255, 315, u"", ControlTrait::None, u"Música:"},
    {2, u"picPreview", ControlKind::PictureBox, u"", 240, 3480, 6735, 2895, u"", ControlTrait::None, u"Vista previa",
     White},
    {3, u"lstImage", ControlKind::ListBox, u"", 240, 960, 3255, 1620, u"", ControlTrait::None, u"Motivos"},
    {4, u"lstMIDI", ControlKind::ListBox, u"", 3720, 960, 3255, 1620, u"", ControlTrait::None, u"Músicas"},
    {5, u"chkImage", ControlKind::CheckBox, u"Reproducir animación", 240, 2760, 2295, 255, u"", ControlTrait::None,
     u""},
    {6, u"chkMIDI", ControlKind::CheckBox, u"Reproducir música", 3720, 2760, 2415, 255, u"", ControlTrait::None, u""},
    {7, u"cmdSetLink", ControlKind::Button, u"Determinar &vínculo", 240, 6600, 3255, 375, u"", ControlTrait::None, u""},
    {8, u"cmdUnsetLink", ControlKind::Button, u"Eliminar &vínculo", 3720, 6600, 3255, 375, u"", ControlTrait::None,
     u""},
    {9, u"DateFrom", ControlKind::DatePicker, u"", 1800, 7200, 2295, 330, u"", ControlTrait::None,
     u"Representación desde"},
    {10, u"DateTo", ControlKind::DatePicker, u"", 4680, 7200, 2295, 330, u"", ControlTrait::None,
     u"Representación hasta"},
    {11, u"cmdHelp", ControlKind::Button, u"Ay&uda", 240, 7800, 1695, 375, u"", ControlTrait::None, u""},
    {12, u"cmdOK", ControlKind::Button, u"&Aceptar", 3480, 7800, 1695, 375, u"", ControlTrait::DefaultButton, u""},
    {13, u"cmdCancel", ControlKind::Button, u"&Cancelar", 5280, 7800, 1695, 375, u"", ControlTrait::CancelButton, u""},
    {14, u"Label1", ControlKind::Label, u"Motivo:", 240, 240, 2295, 375, u"", ControlTrait::None, u""},
    {15, u"Label2", ControlKind::Label, u"Música:", 3720, 240, 2295, 375, u"", ControlTrait::None, u""},
    {16, u"ToolbarPlay", ControlKind::ToolBar, u"", 6240, 2760, 840, 330, u"", ControlTrait::None,
     u"Reproducción de la música"},
    {17, u"lblAnimated", ControlKind::Label, u"Motivo animado", 4320, 3240, 2655, 255, u"", ControlTrait::None, u"",
     Face, Black, Bold, TextSide::Right},
    {18, u"Label3", ControlKind::Label, u"Vista previa:", 240, 3240, 2295, 375, u"", ControlTrait::None, u""},
    {19, u"picImage", ControlKind::PictureBox, u"", 240, 960, 3255, 1620, u"", ControlTrait::None,
     u"Importación de un motivo", White},
    {20, u"lblImage", ControlKind::Label, u"**", 720, 180, 2295, 1215, u"picImage", ControlTrait::HandCursor, u"",
     White},
    {21, u"picMIDI", ControlKind::PictureBox, u"", 3720, 960, 3255, 1620, u"", ControlTrait::None,
     u"Importación de una música", White},
    {22, u"lblMIDI", ControlKind::Label, u"**", 720, 180, 2295, 1215, u"picMIDI", ControlTrait::HandCursor, u"", White},
    {23, u"Label4", ControlKind::Label, u"Representación desde:", 120, 7245, 1695, 255, u"", ControlTrait::None, u""},
    {24, u"Label5", ControlKind::Label, u"hasta", 4200, 7245, 1455, 255, u"", ControlTrait::None, u""},
    {-1, u"imgImage", ControlKind::Image, u"", 120, 180, 480, 480, u"picImage", ControlTrait::None, u""},
    {-1, u"imgMIDI", ControlKind::Image, u"", 120, 180, 480, 480, u"picMIDI", ControlTrait::None, u""},
}};

/// The label that names a control for a screen reader, by their names.
struct CaptionLayout
{
    TextView Label;
    TextView Control;
};

inline constexpr std::array<CaptionLayout, 2> Captions = {{
    {u"Label1", u"cmbImageFolder"},
    {u"Label2", u"cmbMIDIFolder"},
}};

/// What both date pickers share: the days that they can show, and how they show one.
struct DatePickerLayout
{
    CalendarDay First = {1601, 1, 1};
    CalendarDay Last = {9999, 12, 31};
    TextView Format = u"dd/MM/yyyy";
};

inline constexpr DatePickerLayout PeriodPickers;

/// The buttons of ToolbarPlay, in their order from 1. Each is as high as the tool bar.
inline constexpr int32_t ToolButtonWidth = 360;
inline constexpr int32_t ToolImageSide = 240;

struct ToolButtonLayout
{
    int32_t Image; ///< 1: a black triangle that points right; 2: a black square
    TextView ToolTip;
};

inline constexpr std::array<ToolButtonLayout, 2> PlayButtons = {{
    {1, u"Reproducir música"},
    {2, u"Detener música"},
}};

/// The icons of the import boxes, by resource number.
inline constexpr int32_t WarningIcon = 100;     ///< nothing imported yet: a yellow triangle with an exclamation mark
inline constexpr int32_t InformationIcon = 110; ///< an import is there: a white speech bubble with a blue letter i

} // namespace qel
