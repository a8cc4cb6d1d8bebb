/// The record of the module in hand, and what is computed from it: the script, the page text, the summary.
///
/// There is one object per thread, so one module in hand at any moment. Order of calls: set the host's services, write
/// the module's Script, then read. Operations throw Error unless they say otherwise. An object is used on the thread
/// that made it.
#pragma once

#include "module/FormLead.h"
#include "module/localConstants.h"
#include "module/ModuleSettings.h"
#include "platform/hostServices.h"
#include "platform/Platform.h"
#include "text/text.h"

#include <cstdint>
#include <memory>

namespace qel
{

class FormMain
{
public:
    /// Sets the temporary paths and makes the temporary folder; a failure to create it is not an error yet. All
    /// arguments must outlive the object.
    FormMain(const Platform& myPlatform, const localConstants& myConstants, FormLead& myLead);

    /// The host's services; null until the host hands them in. The host may replace them inside one of its own calls,
    /// so a caller holds a copy to keep the service alive.
    std::shared_ptr<BuildHelper> myBuildHelper;
    std::shared_ptr<Database> myDatabase;

    /// How the dialog ended; 0 before its first opening.
    int32_t ExitButton = 0;
    static constexpr int32_t Confirmed = 1;
    static constexpr int32_t NotConfirmed = 2;

    /// The script of the settings in hand. No error.
    Text Script() const;

    /// Puts a stored module in hand: resets everything but the link, then fills it from the script. A script of another
    /// format version leaves a module with nothing chosen, and the reason in ErrorText. Window messages are processed
    /// meanwhile; they must not change the text.
    /// Error 6: a date out of range; what the script holds before it is in force.
    void Script(TextView myScript);

    /// A summary of the module in the host's mark-up.
    /// Error 5: the name of a library picture or tune is shorter than an ending.
    Text TextSettings() const;

    /// The reason of the last failure since the last script was written; a success does not clear it. No error.
    const Text& ErrorText() const { return myError; }

    /// The module's part of the page. Unpacks the module's archive and copies its picture and tune into the folders of
    /// the build; what was copied before a failure stays there. A script that the host writes during one of its own
    /// calls is in hand afterwards and does not affect this page. No error: without a picture the result is empty;
    /// after a failure it is "[Error de plug-in]", and ErrorText gives the reason.
    Text Output();

    // The rest is for the window half of the form, which edits the record in hand.

    ModuleSettings& Settings() { return mySettings; }

    /// The folder of imported files, the same for all modules, with a closing "\".
    const Text& TempFolder() const { return myTempFolder; }

    /// The copy of a tune that the dialog plays.
    const Text& TempMIDI() const { return myTempMIDI; }

    /// Deletes the plain files of the temporary folder; its subfolders stay.
    /// Error 75: the folder is not this user's own. Errors of Files::List and Files::Delete.
    void ClearTempFolder();

    /// Unpacks the module's archive, if it has one, into the temporary folder. False: it cannot be unpacked completely.
    /// Throws what the host throws.
    bool UnPackModule();

    /// The host's services, kept alive for the caller's call into them. Error 91: the host has not handed them in.
    std::shared_ptr<BuildHelper> Helper() const;
    std::shared_ptr<Database> Records() const;

private:
    void ResetSettings();

    const Platform& myPorts;
    const localConstants& myLocalConstants;
    FormLead& myFormLead;
    ModuleSettings mySettings;
    Text myError;
    Text myTempPath;   ///< the system's temporary path, with a closing "\"
    Text myTempFolder; ///< the folder of imported files below it, the same for all modules
    Text myTempMIDI;   ///< the copy of a tune that the dialog plays
};

} // namespace qel
