#include "commands/misuse.h"

#include "common/printable.h"

#include <algorithm>
#include <vector>

namespace qel::host
{

namespace
{

/// The option or argument that an error names in front of ":".
std::string NamedOption(const std::string& myError)
{
    return myError.substr(0, myError.find(':'));
}

/// Why arguments that no command takes are wrong.
std::string ExtrasReason(const std::vector<std::string>& myExtras)
{
    const auto myOption =
        std::ranges::find_if(myExtras, [](const std::string& myExtra) { return myExtra.starts_with("-"); });
    if (myOption != myExtras.end())
    {
        return "there is no option " + *myOption + " here";
    }
    return "\"" + (myExtras.empty() ? "" : myExtras.front()) +
           "\" is one argument too many; put a name with blanks in quotation marks";
}

std::string MismatchReason(const CLI::App& myApplication, const CLI::App& myCommand, const std::string& myError)
{
    const std::string myName = NamedOption(myError);
    const CLI::Option* const myOwnOption = myCommand.get_option_no_throw(myName);
    const CLI::Option* const myOption =
        myOwnOption != nullptr ? myOwnOption : myApplication.get_option_no_throw(myName);
    return myOption != nullptr && myOption->count() > 1 ? myName + " is given more than once; give it once"
                                                        : myName + " needs a value after it";
}

/// Why a flag such as --json=1 is wrong. The error ends with the flag, " = " and the value.
std::string FlagReason(const std::string& myError)
{
    const std::string myFlag = myError.substr(0, myError.find(" = "));
    return myFlag.substr(myFlag.rfind(' ') + 1) + " takes no value; leave it out";
}

/// The reason in plain words, for the errors that a user can cause; the library's text for any other.
std::string ReasonOf(const CLI::App& myApplication, const CLI::App& myCommand, const CLI::Error& myError)
{
    switch (static_cast<CLI::ExitCodes>(myError.get_exit_code()))
    {
    case CLI::ExitCodes::RequiredError:
        return myCommand.get_require_subcommand_min() > 0 ? "no command is given" : myError.what();
    case CLI::ExitCodes::ExtrasError:
        return ExtrasReason(myApplication.remaining(true));
    case CLI::ExitCodes::ArgumentMismatch:
        return MismatchReason(myApplication, myCommand, myError.what());
    case CLI::ExitCodes::ConversionError: // other values than those of flags are checked before they are converted
        return FlagReason(myError.what());
    default:
        return myError.what();
    }
}

} // namespace

std::string MisuseMessage(const CLI::App* myApplication, const CLI::Error& myError)
{
    const CLI::App* myCommand = myApplication;
    std::string myName = "qelhost";
    for (auto myParsed = myCommand->get_subcommands(); !myParsed.empty(); myParsed = myCommand->get_subcommands())
    {
        myCommand = myParsed.front();
        myName += " " + myCommand->get_name();
    }
    return "qelhost: " + Printable(ReasonOf(*myApplication, *myCommand, myError)) + "; " + myName +
           " --help explains the command.\n";
}

} // namespace qel::host
