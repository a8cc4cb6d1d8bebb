/// What an author chooses a link from, and the link text that results. No database and no window.
#pragma once

#include "site/records.h"
#include "text/text.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace qel::host
{

/// A record as the author sees it.
struct LinkRow
{
    int64_t Uid;
    Text Kind;
    Text Name;
    Text Address; ///< or the file's name; empty for a record that leads nowhere
};

/// At most one of `Row` and `Address` says where the link leads.
struct LinkChoice
{
    std::vector<LinkRow> Rows;
    std::optional<std::size_t> Row; ///< index of a record in `Rows`
    Text Address;                   ///< typed by hand, as a browser shows it
    Text Note;                      ///< one line for the author; may be empty
};

/// What is offered to an author whose module has the present link, which is chosen at first. If it cannot be chosen,
/// the note says so.
LinkChoice OfferedLinks(const std::vector<Record>& myRecords, TextView myPresentLink);

/// The link text of a confirmed choice: "UID:" and the uid of its record, or "URL:" and its address, escaped as it has
/// to be in a quoted attribute and in the component's templates. Empty when nothing is chosen.
Text LinkOf(const LinkChoice& myChoice);

} // namespace qel::host
