/// The dialog's window as its logic sees it, with a message box, a sound device and a help viewer: all keep a record.
#pragma once

#include "dialog/FormMainDialog.h"
#include "text/encodings.h"
#include "text/errors.h"

#include <functional>
#include <vector>

namespace qel
{

/// What the logic does with its window, one word for each call.
struct Record
{
    std::vector<std::string> Words;
    std::string Failing; ///< the call that fails

    void Add(const std::string& myWord)
    {
        Words.push_back(myWord);
        myWord == Failing ? throw Error{1234, u"Roto"} : void();
    }
};

/// Any control but a date picker.
struct RecordedControl final : ListBox, PictureBox, PreviewBox, Label, IconImage, CheckBox, Button
{
    RecordedControl(Record& theRecord, std::string myName) : My(theRecord), Name(std::move(myName)) {}
    void AddItem(TextView myText) override { Items.emplace_back(myText); }
    int32_t ListCount() override { return static_cast<int32_t>(Items.size()); }
    int32_t ListIndex() override { return Index; }
    void ListIndex(int32_t i) override { My.Add(Name + "=" + std::to_string(Index = i)), Click ? Click() : void(); }
    Text SelectedText() override { return Index < 0 ? Text() : Items[static_cast<size_t>(Index)]; }
    void Clear() override { Items.clear(), Index = -1, My.Add(Name + " cleared"); }
    void Visible(bool myIsVisible) override { My.Add(Name + (myIsVisible ? " shown" : " hidden")); }
    void Cls() override { My.Add("Cls"); }
    int32_t ScaleWidth() override { return 445; }
    int32_t ScaleHeight() override { return 189; }
    void PaintPicture(const PixelPicture& p, int32_t x, int32_t y) override
    {
        using std::to_string;
        My.Add(to_string(p.Width) + "x" + to_string(p.Height) + "+" + to_string(x) + "+" + to_string(y));
    }
    void Caption(TextView myText) override { My.Add(Name + ": " + ToUtf8(myText.substr(0, 4))); }
    void Icon(int32_t myResource) override { My.Add(std::to_string(myResource)); }
    bool Value() override { return false; }
    void Value(bool myValue) override { My.Add(Name + (myValue ? " on" : " off")); }
    void Enabled(bool myIsEnabled) override { My.Add(Name + (myIsEnabled ? " enabled" : " disabled")); }

    Record& My;
    std::string Name;
    std::function<void()> Click;
    std::vector<Text> Items;
    int32_t Index = -1;
};

struct RecordedPicker final : DatePicker
{
    explicit RecordedPicker(Record& theRecord) : My(theRecord) {}
    std::optional<Date> Value() override { return Day; }
    void Value(std::optional<Date> d) override
    {
        Day = d;
        My.Add(!d ? "no date" : *d > 45000 ? "today" : ToUtf8(NumberText(static_cast<float>(*d))));
    }

    Record& My;
    std::optional<Date> Day;
};

struct RecordedWindow final : FormMainWindow, MessageBox, Sound, HelpViewer
{
    FormMainControls& Controls() override { return All; }
    void Show(FormMainEvents& theEvents) override
    {
        Happened.Words.clear();
        cmbImage.Click = std::bind_front(&FormMainEvents::cmbImageFolder_Click, &theEvents);
        cmbMIDI.Click = std::bind_front(&FormMainEvents::cmbMIDIFolder_Click, &theEvents);
        lstImage.Click = std::bind_front(&FormMainEvents::lstImage_Click, &theEvents);
        theEvents.Form_Load();
        Opening = std::exchange(Happened.Words, {});
        User ? User(theEvents) : void();
        theEvents.Form_Unload();
    }
    void Unload() override { Happened.Add("Unload"); }
    int32_t HelpContextID() override { return 100; }
    void Pointer(MousePointer myPointer) override { Happened.Add(myPointer == MousePointer::Default ? "0" : "11"); }
    std::optional<Text> ShowOpen(const FileDialogSettings& mySettings) override
    {
        Happened.Add(ToUtf8(mySettings.DialogTitle + u"/" + mySettings.Filter) + "/" +
                     std::to_string(mySettings.MaxFileSize) + "/" + std::to_string(mySettings.Flags));
        return Chosen;
    }
    int32_t MsgBox(TextView t, int32_t s) override { return Happened.Add(std::to_string(s) + ToUtf8(t)), PressedOK; }
    void SendMultimediaCommand(TextView myCommand) override { Happened.Add(ToUtf8(myCommand)); }
    void ShowContext(TextView f, int32_t myContext) override
    {
        Happened.Add(ToUtf8(f) + " " + std::to_string(myContext));
    }

    Record Happened;
    std::vector<std::string> Opening; ///< the record up to the user's turn
    std::function<void(FormMainEvents&)> User;
    std::optional<Text> Chosen; ///< in the dialog for opening a file
    RecordedControl cmbImage{Happened, "cmbImageFolder"}, cmbMIDI{Happened, "cmbMIDIFolder"},
        lstImage{Happened, "lstImage"}, lstMIDI{Happened, "lstMIDI"}, picImage{Happened, "picImage"},
        picMIDI{Happened, "picMIDI"}, lblImage{Happened, "lblImage"}, lblMIDI{Happened, "lblMIDI"},
        lblAnimated{Happened, "lblAnimated"}, chkImage{Happened, "chkImage"}, chkMIDI{Happened, "chkMIDI"},
        cmdUnsetLink{Happened, "cmdUnsetLink"}, Rest{Happened, ""};
    RecordedPicker DateFrom{Happened}, DateTo{Happened};
    FormMainControls All{cmbImage, cmbMIDI, lstImage,    lstMIDI,  picImage, picMIDI,      Rest,     Rest,  Rest,
                         lblImage, lblMIDI, lblAnimated, chkImage, chkMIDI,  cmdUnsetLink, DateFrom, DateTo};
};

} // namespace qel
