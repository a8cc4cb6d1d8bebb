/// The user's browser.
#pragma once

#include <filesystem>

namespace qel::host
{

/// Has the user's browser open a file, and does not wait for it. Failure: the system knows no browser.
void OpenInBrowser(const std::filesystem::path& myFile);

} // namespace qel::host
