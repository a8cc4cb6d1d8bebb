/// The texts that a person sees and the templates of the page, by number.
#pragma once

#include "resources/versionTexts.h"
#include "text/text.h"

#include <cstdint>

namespace qel
{

/// The numbers of the texts. "%1" and so on in a text are placeholders that the caller fills.
namespace StringId
{
// What the component says about itself to a host
inline constexpr int32_t Description = 10;
inline constexpr int32_t Function = 20;
inline constexpr int32_t RequirementsClient = 30;
inline constexpr int32_t RequirementsServer = 40;
inline constexpr int32_t Config = 50;

// The summary of a module, joined from its sentences
inline constexpr int32_t SummaryNoImage = 500;
inline constexpr int32_t SummaryLibraryImage = 510; ///< %1: the picture's name
inline constexpr int32_t SummaryOwnImage = 511;
inline constexpr int32_t SummaryImageOff = 512;
inline constexpr int32_t SummaryLibraryMIDI = 520; ///< %1: the tune's name
inline constexpr int32_t SummaryOwnMIDI = 521;
inline constexpr int32_t SummaryMIDIOff = 522;
inline constexpr int32_t SummaryPeriod = 530;

// The file dialog of an import
inline constexpr int32_t OpenImageTitle = 600;
inline constexpr int32_t OpenImageFilter = 610;
inline constexpr int32_t OpenMIDITitle = 650;
inline constexpr int32_t OpenMIDIFilter = 660;

// Failures of a page or a script
inline constexpr int32_t OutputFailed = 700;  ///< appears in the page instead of the module
inline constexpr int32_t OutputFailure = 710; ///< %1: number and description of an error
inline constexpr int32_t NoImageChosen = 720;
inline constexpr int32_t LinkIsBroken = 730;

// The import boxes
inline constexpr int32_t ImageIsImported = 800;
inline constexpr int32_t ImageIsNotImported = 801;
inline constexpr int32_t MIDIIsImported = 810;
inline constexpr int32_t MIDIIsNotImported = 811;

// Messages of the dialog
inline constexpr int32_t ImportImageFirst = 820;
inline constexpr int32_t ImportMIDIFirst = 830;
inline constexpr int32_t ImageIsTooLarge = 840; ///< a question
inline constexpr int32_t PeriodIsReversed = 850;
inline constexpr int32_t ArchiveNotWritten = 860; ///< %1: its path, %2: the description of the error
inline constexpr int32_t DateNotShown = 870;      ///< %1: a date of the period; the description of an error

// Templates of the page; %1 is the instance number in each
inline constexpr int32_t PageStart = 900;
inline constexpr int32_t PageFrom = 910;   ///< %2, %3, %4: year, month from 0, day
inline constexpr int32_t PageTo = 920;     ///< the same of the day after the last one
inline constexpr int32_t PageImage = 1000; ///< %2, %7: the tags of the link, %3: address, %4, %5: width and height
inline constexpr int32_t PageMIDI = 1010;  ///< %2: address
} // namespace StringId

/// The text of a number. Callable on any thread. Error 5: there is no such text.
TextView LoadResString(int32_t myNumber);

/// What the component says about itself.
struct VersionRecord
{
    TextView ProjectName = u"" QEL_PROJECT_NAME;
    TextView Title = u"" QEL_TITLE;
    TextView FileDescription = u"" QEL_FILE_DESCRIPTION;
    TextView Copyright = u"" QEL_COPYRIGHT;
    int32_t Major = QEL_VERSION_MAJOR;
    int32_t Minor = QEL_VERSION_MINOR;
    int32_t Revision = QEL_VERSION_REVISION;
};

inline constexpr VersionRecord ComponentVersion;

} // namespace qel
