#include "common/systemReasons.h"

#include <algorithm>
#include <utility>

namespace qel::host
{

namespace
{

constexpr std::pair<std::errc, const char*> Reasons[] = {
    {std::errc::no_space_on_device, DiskIsFull},
    {std::errc::read_only_file_system, "the disk is read-only; copy the site to another one"},
    {std::errc::permission_denied, "no permission; change the permissions of the file and its folder"},
    {std::errc::operation_not_permitted, "no permission; change the permissions of the file and its folder"},
    {std::errc::no_such_file_or_directory, "there is no such file or folder; check the path"},
    {std::errc::not_a_directory, "a part of its path is not a folder; check the path"},
    {std::errc::is_a_directory, "it is a folder; give a file"},
    {std::errc::filename_too_long, "the name or its path is too long; give a shorter one"},
    {std::errc::not_supported, "it is not a plain file; give one"},
    {std::errc::too_many_symbolic_link_levels, "it is a link, or leads through too many; give the file itself"},
};

} // namespace

std::string ReasonOf(const std::error_code& myError)
{
    const auto* const myReason =
        std::ranges::find_if(Reasons, [&](const auto& myEntry) { return myError == myEntry.first; });
    return myReason == std::end(Reasons) ? myError.message() : myReason->second;
}

} // namespace qel::host
