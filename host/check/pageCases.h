/// Pages of the full script with other links, and the calls into the host that each makes.
#pragma once

#include "check/ServedPlugin.h"

#include <span>

namespace qel::host
{

/// A link, the record that it leads to, and the result.
struct LinkCase
{
    const char16_t* Link;
    int32_t Kind;
    bool AtEnd;          ///< there is no such record
    const char16_t* Tag; ///< in front of the picture; LinkFails where the page fails
    TextView Calls;      ///< what the host is asked about the link
};

inline constexpr const char16_t* LinkFails = nullptr;

std::span<const LinkCase> LinkCases();

/// The case whose page makes the most calls: a link to a file.
const LinkCase& LongestCase();

std::string NameOf(const LinkCase& myCase);

/// The page of FullScript with the link of a case. The host's answers are set for it, and its list of calls begins
/// anew.
Text OutputOf(const LinkCase& myCase, ServedPlugin& theServed);

// What a page of FullScript asks the host, in this order: before the link, and after it.
inline constexpr TextView CallsForPeriod = u"DataFolder InstanceNumber InstanceNumber InstanceNumber ";
inline constexpr TextView CallsForPicture = u"InstanceNumber UniqueName ";
inline constexpr TextView CallsForStaging = u"ImageFolder ImageURL ";
inline constexpr TextView CallsForTune = u"UniqueName MediaFolder InstanceNumber MediaURL ";

/// All calls of a case's page, each followed by a blank.
Text CallOrder(const LinkCase& myCase);
int64_t CallCount(TextView myCalls);
/// The calls that a host has counted, in the same form.
Text Joined(const std::vector<std::string>& myCalls);

} // namespace qel::host
