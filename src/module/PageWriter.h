/// Writes a module's part of the page, and copies its picture and its tune into the folders of the build.
///
/// An object serves one page, on the thread of its ports. The host is asked in the order in which the parts are
/// written, and may do anything with the component during such a call: write another script or hand in other services.
/// So the constructor copies everything that the host can change.
#pragma once

#include "module/FormLead.h"
#include "module/localConstants.h"
#include "module/ModuleSettings.h"
#include "platform/hostServices.h"
#include "platform/Platform.h"
#include "text/text.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace qel
{

class PageWriter
{
public:
    /// `myTemporaryFolder` holds the module's imported files, with a closing "\". It and all references must outlive
    /// the object. A service may be null if the page does not need it.
    PageWriter(const Platform& myPlatform, const localConstants& myConstants, FormLead& myLead,
               const Text& myTemporaryFolder, const ModuleSettings& myModule,
               const std::shared_ptr<BuildHelper>& myHelper, const std::shared_ptr<Database>& myRecords);

    /// The script element. Nothing: the link leads nowhere. Unpacks the module's archive first, which must find the
    /// temporary folder empty. What was copied before a failure stays there.
    /// Error 91: a service is missing. Errors of Files::Copy and ImagingControl::Load; what the host throws.
    std::optional<Text> PageText();

private:
    Text PeriodText(int32_t myTemplate, Date myDay);
    std::optional<Text> ImageText();
    Text TuneText();
    Text ResolveLink(const Text& myLinkText);
    Text StageRecord(Text (BuildHelper::*myFolder)(), Text (BuildHelper::*myURL)());
    Text FilledTemplate(int32_t myTemplate);
    Text SourcePath(TextView myFolder, TextView myName) const;
    Text TargetName(TextView myPrefix, TextView myName);
    BuildHelper& Helper() const;
    Database& Records() const;

    const Platform& myPorts;
    const localConstants& myLocalConstants;
    FormLead& myFormLead;
    const Text& myTempFolder;
    const ModuleSettings mySettings;
    const std::shared_ptr<BuildHelper> myBuildHelper;
    const std::shared_ptr<Database> myDatabase;
};

} // namespace qel
