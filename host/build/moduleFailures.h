/// The texts about a module that failed: the reason for the author, and the comment for the page.
#pragma once

#include "com/QelHelperInterfaces.h"
#include "site/Site.h"
#include "text/text.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace qel::host
{

/// The error number in a reason of the component, such as 53 in `... "53: ...".`. Two reasons have none and get the
/// number that their text has in the component: 720 where nothing is chosen, so that the module's output is empty, and
/// 730 where its link does not work.
std::string ErrorNumberOf(std::string_view myReason, bool myIsOutputEmpty);

/// The error number of a call of the component that failed: that of the component, or else the result itself.
std::string ErrorNumberOf(HRESULT myResult);

/// The comment that a page gets in the place of a failed module. It contains nothing but the two numbers.
Text FailureComment(int64_t myModule, const std::string& myErrorNumber);

/// What the author of a module has not chosen although its page needs it, and what to do about it, such as "no tune is
/// chosen; ..."; the empty text if nothing is missing.
std::string MissingChoice(const std::string& myScript);

/// What is wrong with the record that a module links to: it is missing, leads nowhere, or its file is missing; the
/// empty text if nothing is. The component does not report a missing file.
std::string LinkProblem(Site& theSite, const Module& myModule);

/// The cause of a module's failure with this error number, as far as it can be known, and what to do about it; shown
/// after the component's reason. The library is the component's folder of motifs and tunes.
std::string FailureDetails(Site& theSite, const Module& myModule, const std::string& myErrorNumber,
                           const std::filesystem::path& myLibrary);

} // namespace qel::host
