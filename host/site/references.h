/// What an HTML page refers to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qel::host
{

/// The relative references of a page, each once and in the order of the page, as paths below the folder of the page:
/// query and fragment cut off, character references and percent encoding resolved. They are the values of `href`,
/// `src`, `srcset`, `imagesrcset`, `data`, `poster` and `background`, and `url(...)` and `@import` in `style`
/// attributes and elements; what scripts and comments contain is not looked at. Addresses with a scheme or a host,
/// absolute paths and fragments alone are left out. A relative `base` is put before each; an absolute one leaves none.
std::vector<std::string> RelativeReferences(std::string_view myPage);

} // namespace qel::host
