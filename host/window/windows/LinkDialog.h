/// The window in which an author chooses a link: the site's records, and a field for any other address.
///
/// One of the two is the target of the link: choosing a record clears the field, and typing clears the selection of the
/// list. Without a target the window cannot be confirmed. The window has the scale of its screen, and can be resized.
#pragma once

#include "platform/windows/window/appearance.h"
#include "site/LinkChoice.h"

#include <exception>

namespace qel::host
{

class LinkDialog final
{
public:
    /// Offers the targets of the choice, which takes what the author chooses.
    explicit LinkDialog(LinkChoice& theChoice) : myChoice(theChoice) {}
    LinkDialog(const LinkDialog&) = delete;
    LinkDialog& operator=(const LinkDialog&) = delete;

    /// Shows the window above another one, which is disabled meanwhile, or above none. Returns whether the author has
    /// confirmed it; else the choice is unchanged. Error 57: there is no display. What fails in the window closes it
    /// and is thrown here.
    bool Show(HWND myOwner);

private:
    static INT_PTR CALLBACK DialogProcedure(HWND myDialog, UINT myMessage, WPARAM myFirst, LPARAM mySecond);
    INT_PTR Answer(UINT myMessage, WPARAM myFirst, LPARAM mySecond);
    void Fill();
    void FillRecords();
    void TakeScale(UINT myDotsPerInch);
    RECT FirstPlace() const;
    void Place(const RECT& myPlace);
    void Arrange();
    void TakeCommand(UINT myControl, UINT myNotification);
    void TakeNotice(const NMHDR& myNotice);
    void UpdateConfirm();
    std::optional<std::size_t> SelectedRow() const;
    Text TypedAddress() const;
    HWND Control(int myId) const { return GetDlgItem(myWindow, myId); }

    LinkChoice& myChoice;
    HWND myWindow = nullptr;
    Scale myScale;
    Owned<HFONT, &DeleteObject> myFont;
    std::exception_ptr myFailure;
};

/// The identifiers of the controls besides those of OK and Cancel.
enum LinkControl : int
{
    RecordsLabel = 100,
    RecordsList,
    AddressLabel,
    AddressField,
    NoteLabel
};

} // namespace qel::host
