/// What an HTML page refers to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qel::host
{

/// The relative references of a page, each once and in the order of the page, as paths below the folder of the page:
/// query and fragment cut off, character references and percent encoding resolved. They are the values of `href`,
/// `src`, `data`, `poster` and `background`; what scripts, styles and comments contain is not looked at. Addresses with
/// a scheme or a host, absolute paths, fragments alone and the address of a `base` are left out.
std::vector<std::string> RelativeReferences(std::string_view myPage);

} // namespace qel::host
