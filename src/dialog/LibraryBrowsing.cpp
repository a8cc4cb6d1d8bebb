#include "dialog/FormMainDialog.h"
#include "text/ScopeGuard.h"
#include "utilities/classStringSort.h"

namespace qel
{
namespace
{

/// Fills a box with names in sorted order, the last characters of each left out. Gives the index of the last name that
/// equals the selected one without regard to case, or 0.
int32_t AddSorted(ComboBox& theBox, const std::vector<Text>& myNames, TextView mySelected, size_t myCut)
{
    classStringSort mySort;
    for (const Text& myName : myNames)
    {
        mySort.AddValue(myName);
    }
    mySort.Sort();
    const Text myLowered = LowerCase(mySelected);
    int32_t theSelection = 0;
    for (int32_t i = 1; i <= mySort.ValueCount(); ++i)
    {
        const Text& myName = mySort.Value(i);
        if (LowerCase(myName) == myLowered)
        {
            theSelection = theBox.ListCount();
        }
        theBox.AddItem(TextView(myName).substr(0, myName.size() - myCut));
    }
    return theSelection;
}

} // namespace

void FormMainDialog::FillFolderCombo(ComboBox& theCombo, TextView myFolder)
{
    std::vector<Text> myNames =
        myPorts.files.List(JoinTexts({myLocalConstants.myDesignsFolder, u"*.*"}), Listing::FilesAndFolders);
    std::erase_if(myNames, [](const Text& s) { return s == u"." || s == u".."; });
    int32_t mySelection = AddSorted(theCombo, myNames, myFolder, 0);
    theCombo.AddItem(OwnFileEntry);
    if (EqualInLowerCase(myFolder, OwnFileEntry))
    {
        mySelection = theCombo.ListCount() - 1;
    }
    Select(theCombo, mySelection);
}

void FormMainDialog::FillFileList(TextView myExtension, ListBox& theList, TextView myFolder, TextView mySelected)
{
    theList.Clear();
    const std::vector<Text> myNames = myPorts.files.List(LibraryFile(myFolder, u"*", myExtension), Listing::PlainFiles);
    const int32_t mySelection = AddSorted(theList, myNames, mySelected, myExtension.size());
    if (theList.ListCount() > 0)
    {
        Select(theList, mySelection);
    }
}

/// Writes a selected index; the box's click handler runs inside, and its failures come out.
void FormMainDialog::Select(ComboBox& theBox, int32_t myIndex)
{
    ++myIndexWrites;
    const ScopeGuard myGuard([&] { --myIndexWrites; });
    theBox.ListIndex(myIndex);
}

void FormMainDialog::OpenImageFolder()
{
    const Text myFolder = Controls().cmbImageFolder.SelectedText();
    const bool myIsOwn = myFolder == OwnFileEntry;
    Controls().picImage.Visible(myIsOwn);
    Controls().lstImage.Visible(!myIsOwn);
    if (myIsOwn)
    {
        UpdatePreview();
        UpdateImageLabel();
    }
    else
    {
        FillFileList(GifExtension, Controls().lstImage, myFolder, Settings().myImage);
    }
}

void FormMainDialog::OpenMIDIFolder()
{
    const Text myFolder = Controls().cmbMIDIFolder.SelectedText();
    const bool myIsOwn = myFolder == OwnFileEntry;
    Controls().picMIDI.Visible(myIsOwn);
    Controls().lstMIDI.Visible(!myIsOwn);
    if (!myIsOwn)
    {
        FillFileList(TuneExtension, Controls().lstMIDI, myFolder, Settings().myMIDI);
    }
    UpdateMIDILabel();
}

Text FormMainDialog::LibraryFile(TextView myFolder, TextView myName, TextView myExtension) const
{
    return JoinTexts({myLocalConstants.myDesignsFolder, myFolder, u"\\", myName, myExtension});
}

} // namespace qel
