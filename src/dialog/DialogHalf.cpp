#include "dialog/DialogHalf.h"

#include "dialog/importedFiles.h"
#include "resources/stringTable.h"

namespace qel
{

DialogHalf MotifHalf(const FormMainControls& theControls)
{
    return {
        .Folders = theControls.cmbImageFolder,
        .Files = theControls.lstImage,
        .ImportBox = theControls.picImage,
        .ImportLabel = theControls.lblImage,
        .ImportIcon = theControls.imgImage,
        .Switch = theControls.chkImage,
        .Folder = &ModuleSettings::myImageFolder,
        .Filename = &ModuleSettings::myImage,
        .IsOn = &ModuleSettings::myShowImage,
        .Extension = GifExtension,
        .OpenTitle = StringId::OpenImageTitle,
        .OpenFilter = StringId::OpenImageFilter,
        .IsImportedText = StringId::ImageIsImported,
        .IsNotImportedText = StringId::ImageIsNotImported,
        .ImportFirstText = StringId::ImportImageFirst,
        .IsImported = [](const ModuleSettings& s) { return s.myImageMode != ImageMode::None; },
        .ImportedName = [](const ModuleSettings& s) { return ImportedImage(s.myImageMode); },
    };
}

DialogHalf TuneHalf(const FormMainControls& theControls)
{
    return {
        .Folders = theControls.cmbMIDIFolder,
        .Files = theControls.lstMIDI,
        .ImportBox = theControls.picMIDI,
        .ImportLabel = theControls.lblMIDI,
        .ImportIcon = theControls.imgMIDI,
        .Switch = theControls.chkMIDI,
        .Folder = &ModuleSettings::myMIDIFolder,
        .Filename = &ModuleSettings::myMIDI,
        .IsOn = &ModuleSettings::myPlayMIDI,
        .Extension = TuneExtension,
        .OpenTitle = StringId::OpenMIDITitle,
        .OpenFilter = StringId::OpenMIDIFilter,
        .IsImportedText = StringId::MIDIIsImported,
        .IsNotImportedText = StringId::MIDIIsNotImported,
        .ImportFirstText = StringId::ImportMIDIFirst,
        .IsImported = [](const ModuleSettings& s) { return s.myMIDIMode; },
        .ImportedName = [](const ModuleSettings&) { return ImportedTune(); },
    };
}

} // namespace qel
