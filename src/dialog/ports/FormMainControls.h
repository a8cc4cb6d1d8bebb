/// The controls of the settings dialog as its logic sees them: one narrow port for each kind of control.
///
/// A control is used on the thread that made its window, until the window is unloaded. Operations have no errors unless
/// they say so. Texts and positions are those of resources/formLayout.h until an operation changes them.
#pragma once

#include "text/dates.h"
#include "text/text.h"

#include <cstdint>
#include <optional>

namespace qel
{

struct PixelPicture;

/// A list to select one entry from. Entries count from 0.
class ComboBox
{
public:
    virtual ~ComboBox() = default;

    /// Adds an entry at the end. The selection stays, and no handler runs.
    virtual void AddItem(TextView myText) = 0;
    virtual int32_t ListCount() = 0;

    /// The selected entry; -1 when there is none.
    virtual int32_t ListIndex() = 0;

    /// Selects an entry, which must exist. The click handler of the control, if the form has one, runs before the call
    /// returns, also when nothing changes; what it throws is passed on.
    virtual void ListIndex(int32_t myIndex) = 0;

    /// The text of the selected entry; empty when there is none.
    virtual Text SelectedText() = 0;
};

/// A list that shows several entries, and can be emptied and hidden.
class ListBox : public ComboBox
{
public:
    /// Removes all entries, and the selection with them. No handler runs.
    virtual void Clear() = 0;
    /// Shows or hides the list; entries and selection stay.
    virtual void Visible(bool myValue) = 0;
};

/// A frame that contains other controls.
class PictureBox
{
public:
    virtual ~PictureBox() = default;
    /// Shows or hides the frame and everything in it.
    virtual void Visible(bool myValue) = 0;
};

/// The frame that the preview is painted into. It measures in pixels of 96 to the inch, whatever the screen's scale.
class PreviewBox
{
public:
    virtual ~PreviewBox() = default;

    /// Empties the box to its white background.
    virtual void Cls() = 0;

    /// The inner size, without the border.
    virtual int32_t ScaleWidth() = 0;
    virtual int32_t ScaleHeight() = 0;

    /// Paints a copy of a picture at its own size, its transparent parts left white, with its top left corner at that
    /// position inside the border. It stays until Cls.
    virtual void PaintPicture(const PixelPicture& myPicture, int32_t myLeft, int32_t myTop) = 0;
};

/// A text, which on some labels the author can click.
class Label
{
public:
    virtual ~Label() = default;
    virtual void Caption(TextView myText) = 0;
    virtual void Visible(bool myValue) = 0;
};

/// A place for an icon.
class IconImage
{
public:
    virtual ~IconImage() = default;
    /// Shows WarningIcon or InformationIcon of resources/formLayout.h.
    virtual void Icon(int32_t myResource) = 0;
};

/// A box that is on or off. No handler runs when it changes.
class CheckBox
{
public:
    virtual ~CheckBox() = default;
    virtual bool Value() = 0;
    virtual void Value(bool myValue) = 0;
};

/// A button to press.
class Button
{
public:
    virtual ~Button() = default;
    /// A disabled button shows that it cannot be pressed.
    virtual void Enabled(bool myValue) = 0;
};

/// A date with a check box. No handler runs when it changes.
class DatePicker
{
public:
    virtual ~DatePicker() = default;

    /// The date, with the time of day that was written with it as long as the author has not changed the day. Nothing:
    /// the box is off.
    virtual std::optional<Date> Value() = 0;

    /// Shows a date and switches the box on. Nothing switches it off, and the shown date stays. Error 5: a date that
    /// the picker cannot show: before 1601 or after 9999, or outside the limits of the system.
    virtual void Value(std::optional<Date> myDate) = 0;
};

/// The controls of the dialog that its logic works with.
struct FormMainControls
{
    ComboBox& cmbImageFolder;
    ComboBox& cmbMIDIFolder;
    ListBox& lstImage;
    ListBox& lstMIDI;
    PictureBox& picImage;
    PictureBox& picMIDI;
    PreviewBox& picPreview;
    IconImage& imgImage;
    IconImage& imgMIDI;
    Label& lblImage;
    Label& lblMIDI;
    Label& lblAnimated;
    CheckBox& chkImage;
    CheckBox& chkMIDI;
    Button& cmdUnsetLink;
    DatePicker& DateFrom;
    DatePicker& DateTo;
};

} // namespace qel
