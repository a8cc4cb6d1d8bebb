/// The files that belong to the pages, such as styles, scripts and pictures: the content of the site's folder `static`.
#pragma once

#include "site/Site.h"

#include <filesystem>
#include <string>
#include <vector>

namespace qel::host
{

struct StaticFile
{
    std::string Path; ///< below the folder, with "/" between names
    std::filesystem::path Source;
};

struct StaticFiles
{
    std::vector<StaticFile> Files;     ///< in the order of their paths
    std::vector<std::string> Problems; ///< what stays out, and why
    std::vector<std::string> Warnings; ///< what Windows cannot hold, in the words of WindowsNameWarning
};

/// Lists the plain files of a folder and its subfolders. Links are not followed. Left out are links, hidden files,
/// whatever else is no plain file, and paths that a page or a folder of the build has, without regard to case.
StaticFiles ListStaticFiles(const std::filesystem::path& myFolder, const std::vector<Page>& myPages);

} // namespace qel::host
