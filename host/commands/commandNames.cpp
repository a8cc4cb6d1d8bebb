#include "commands/commandNames.h"

#include "common/Failure.h"
#include "common/printable.h"

#include <algorithm>
#include <vector>

namespace qel::host
{

namespace
{

/// How many characters have to be inserted, removed, changed, or swapped with the next one, to turn one text into the
/// other.
std::size_t EditDistance(std::string_view myFirst, std::string_view mySecond)
{
    std::vector<std::vector<std::size_t>> myTable(myFirst.size() + 1, std::vector<std::size_t>(mySecond.size() + 1));
    for (std::size_t i = 0; i <= myFirst.size(); ++i)
    {
        for (std::size_t j = 0; j <= mySecond.size(); ++j)
        {
            if (i == 0 || j == 0)
            {
                myTable[i][j] = i + j;
                continue;
            }
            const std::size_t myChanged = myTable[i - 1][j - 1] + (myFirst[i - 1] == mySecond[j - 1] ? 0 : 1);
            myTable[i][j] = std::min({myChanged, myTable[i - 1][j] + 1, myTable[i][j - 1] + 1});
            if (i > 1 && j > 1 && myFirst[i - 1] == mySecond[j - 2] && myFirst[i - 2] == mySecond[j - 1])
            {
                myTable[i][j] = std::min(myTable[i][j], myTable[i - 2][j - 2] + 1);
            }
        }
    }
    return myTable[myFirst.size()][mySecond.size()];
}

std::vector<const CLI::App*> CommandsOf(const CLI::App& myGroup)
{
    return myGroup.get_subcommands([](const CLI::App* myCommand)
                                   { return !myCommand->get_name().empty() && !myCommand->get_group().empty(); });
}

/// The name of the command of the group that is most similar to a name; empty if none is similar.
std::string NearestName(const CLI::App& myGroup, const std::string& myName)
{
    std::string theNearest;
    std::size_t myLeast = myName.size() / 3 + 1; // a name with more than a third of it changed is not similar
    for (const CLI::App* const myCommand : CommandsOf(myGroup))
    {
        const std::size_t myDistance = EditDistance(myName, myCommand->get_name());
        if (myDistance < myLeast)
        {
            myLeast = myDistance;
            theNearest = myCommand->get_name();
        }
    }
    return theNearest;
}

/// The commands with exactly this name in the groups below, such as "page list" and "module list".
std::vector<std::string> SameNames(const CLI::App& myGroup, const std::string& myName)
{
    std::vector<std::string> theNames;
    for (const CLI::App* const mySubgroup : CommandsOf(myGroup))
    {
        for (const CLI::App* const myCommand : CommandsOf(*mySubgroup))
        {
            if (myCommand->get_name() == myName)
            {
                theNames.push_back(mySubgroup->get_name() + " " + myName);
            }
        }
    }
    return theNames;
}

/// The question whether one of the commands was meant; empty without any.
std::string Question(const std::string& myPath, const std::vector<std::string>& myNames)
{
    std::string theQuestion;
    for (std::size_t i = 0; i < myNames.size(); ++i)
    {
        theQuestion += i == 0 ? "; did you mean " : i + 1 < myNames.size() ? ", " : " or ";
        theQuestion += "\"" + myPath + myNames[i] + "\"";
    }
    return theQuestion + (myNames.empty() ? "" : "?");
}

/// `myPath` holds the names up to the group, each followed by a blank.
[[noreturn]] void FailFor(const CLI::App& myGroup, const std::string& myPath, const std::string& myName)
{
    std::vector<std::string> myMeant = SameNames(myGroup, myName);
    if (const std::string myNearest = NearestName(myGroup, myName); myMeant.empty() && !myNearest.empty())
    {
        myMeant.push_back(myNearest);
    }
    throw UsageFailure("there is no command \"" + myPath + Printable(myName) + "\"" + Question(myPath, myMeant) +
                       (myMeant.empty() ? "; " : " ") + "qelhost " + myPath + "--help lists the commands");
}

} // namespace

void DemandKnownCommands(const CLI::App& myApplication, const std::vector<std::string>& myTexts)
{
    const CLI::App* myGroup = &myApplication;
    std::string myPath;
    for (std::size_t i = 0; i < myTexts.size() && myGroup->get_require_subcommand_min() > 0; ++i)
    {
        const std::string& myText = myTexts[i];
        if (myText == "--plugin")
        {
            ++i; // its value
        }
        else if (!myText.starts_with("-"))
        {
            const auto myCommands =
                myGroup->get_subcommands([&](const CLI::App* c) { return c->get_name() == myText; });
            if (myCommands.empty())
            {
                FailFor(*myGroup, myPath, myText);
            }
            myGroup = myCommands.front();
            myPath += myText + " ";
        }
    }
}

} // namespace qel::host
