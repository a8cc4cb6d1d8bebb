/// The user's browser.
#pragma once

#include <filesystem>

namespace qel::host
{

/// Opens a file in the user's browser, without waiting for it. Failure: no browser is known.
void OpenInBrowser(const std::filesystem::path& myFile);

} // namespace qel::host
