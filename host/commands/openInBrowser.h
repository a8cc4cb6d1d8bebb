/// The user's browser.
#pragma once

#include <filesystem>

namespace qel::host
{

/// Opens a file in the user's browser. It returns when the opener has ended, or after a few seconds, because an opener
/// may run as long as the browser does. Failure: there is no opener, or it has failed.
void OpenInBrowser(const std::filesystem::path& myFile);

} // namespace qel::host
