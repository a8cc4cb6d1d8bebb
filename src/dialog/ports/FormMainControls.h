/// The controls of the settings dialog as its logic sees them: one narrow port for each kind of control.
///
/// A control is used on the thread that made its window.
#pragma once

#include "text/dates.h"
#include "text/text.h"

#include <cstdint>
#include <optional>

namespace qel
{

struct PixelPicture;

/// A list to pick one entry from. Entries count from 0.
class ComboBox
{
public:
    virtual ~ComboBox() = default;

    virtual void AddItem(TextView myText) = 0;
    virtual int32_t ListCount() = 0;

    /// The selected entry; -1 when there is none.
    virtual int32_t ListIndex() = 0;

    /// Selects an entry; the control's click handler runs before the call returns, also when nothing changes, and what
    /// it throws comes out here.
    virtual void ListIndex(int32_t myIndex) = 0;

    /// The text of the selected entry; empty when there is none.
    virtual Text SelectedText() = 0;
};

/// A combo box whose entries all show, and which can be emptied and hidden.
class ListBox : public ComboBox
{
public:
    /// Takes all entries out. No handler runs.
    virtual void Clear() = 0;
    virtual void Visible(bool myValue) = 0;
};

/// A frame with other controls in it.
class PictureBox
{
public:
    virtual ~PictureBox() = default;
    virtual void Visible(bool myValue) = 0;
};

/// The frame that the preview is painted into; it measures in pixels.
class PreviewBox
{
public:
    virtual ~PreviewBox() = default;

    /// Empties the box to its white background.
    virtual void Cls() = 0;
    /// The inner size, the border left out.
    virtual int32_t ScaleWidth() = 0;
    virtual int32_t ScaleHeight() = 0;
    /// Paints a picture at its own size, its transparent parts left white. It stays until Cls.
    virtual void PaintPicture(const PixelPicture& myPicture, int32_t myLeft, int32_t myTop) = 0;
};

class Label
{
public:
    virtual ~Label() = default;
    virtual void Caption(TextView myText) = 0;
    virtual void Visible(bool myValue) = 0;
};

/// A place for one of the two icons, by resource number (see resources/formLayout.h).
class IconImage
{
public:
    virtual ~IconImage() = default;
    virtual void Icon(int32_t myResource) = 0;
};

class CheckBox
{
public:
    virtual ~CheckBox() = default;
    virtual bool Value() = 0;
    virtual void Value(bool myValue) = 0;
};

class Button
{
public:
    virtual ~Button() = default;
    virtual void Enabled(bool myValue) = 0;
};

/// A date with a check box; the box is off when there is no value.
class DatePicker
{
public:
    virtual ~DatePicker() = default;
    virtual std::optional<Date> Value() = 0;

    /// Nothing switches the box off and leaves the date that shows. Error 5: a date before 1601 or after 9999.
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
