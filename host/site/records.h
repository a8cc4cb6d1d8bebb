/// The records of a site: what links can lead to.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace qel::host
{

/// The kinds of records, by their numbers.
enum class RecordKind
{
    None,    ///< leads nowhere
    Page,    ///< a page of the site, or any page by its address
    Section, ///< a place on a page
    Address,
    Picture, ///< a file that goes to the pictures
    File,    ///< a file that goes to the other files
    Mail
};

struct Record
{
    int64_t Uid;
    RecordKind Kind;
    std::string Title;
    std::string Page;     ///< name of the page that it leads to, or empty
    std::string Address;  ///< what follows the page's name, or the whole address
    std::string Filename; ///< name below the data folder, of a picture or another file
};

/// What a command sets in a new or an existing record; what is not given stays unchanged.
struct RecordChange
{
    std::optional<std::string> Title;
    std::optional<std::string> Page;
    std::optional<std::string> Address;
    std::optional<std::filesystem::path> File; ///< copied into the data folder
};

/// The kind of a number or name, such as "4" or "picture". UsageFailure: there is none.
RecordKind ParseKind(std::string_view myText);

std::string_view KindName(RecordKind myKind);

/// True for the kinds that are a file of the data folder.
bool HasFile(RecordKind myKind);

/// Passes when the kind accepts everything that is given. UsageFailure: it does not, or an address is not UTF-8.
void DemandSuited(RecordKind myKind, const RecordChange& myChange);

/// Passes when the record has what its kind needs. UsageFailure: it has not.
void DemandComplete(const Record& myRecord);

/// The address of a link to a record, a page's name in it percent-encoded; empty for a record that is a file or leads
/// nowhere.
std::string RecordAddress(const Record& myRecord);

/// Where a record leads, for a person to read: the name of its file, or its address without percent encoding.
std::string RecordTarget(const Record& myRecord);

} // namespace qel::host
