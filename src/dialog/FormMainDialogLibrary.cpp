#include "dialog/FormMainDialog.h"
#include "text/ScopeGuard.h"
#include "utilities/classStringSort.h"

namespace qel
{
namespace
{

/// Adds names to a box in sorted order, each without its last characters. Returns the index of the last name that
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

/// Writes the selected index. The click handler of the box runs during the write, and its exceptions pass through.
void FormMainDialog::Select(ComboBox& theBox, int32_t myIndex)
{
    ++myIndexWrites;
    const ScopeGuard myGuard([&] { --myIndexWrites; });
    theBox.ListIndex(myIndex);
}

bool FormMainDialog::OwnFileIsSelected(const DialogHalf& myHalf)
{
    return myHalf.Folders.SelectedText() == OwnFileEntry;
}

/// Shows the import box for the own file, else the list with the files of the selected folder.
void FormMainDialog::OpenFolder(const DialogHalf& myHalf)
{
    const Text myFolder = myHalf.Folders.SelectedText();
    const bool myIsOwn = myFolder == OwnFileEntry;
    myHalf.ImportBox.Visible(myIsOwn);
    myHalf.Files.Visible(!myIsOwn);
    if (!myIsOwn)
    {
        FillFileList(myHalf.Extension, myHalf.Files, myFolder, Settings().*myHalf.Filename);
    }
}

/// The path of the selected file of the library. If nothing is selected in the list, there is no such file.
Text FormMainDialog::SelectedFile(const DialogHalf& myHalf) const
{
    return LibraryFile(myHalf.Folders.SelectedText(), myHalf.Files.SelectedText(), myHalf.Extension);
}

Text FormMainDialog::LibraryFile(TextView myFolder, TextView myName, TextView myExtension) const
{
    return JoinTexts({myLocalConstants.myDesignsFolder, myFolder, u"\\", myName, myExtension});
}

} // namespace qel
