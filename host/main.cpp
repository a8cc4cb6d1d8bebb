/// qelhost: manages small web sites whose pages contain modules of the component, and builds them.
///
/// The exit code is 0 for success, 1 if something failed, 2 if the command line is wrong.

#include "commands/commandNames.h"
#include "commands/commands.h"
#include "commands/misuse.h"
#include "commands/terminal.h"
#include "common/Failure.h"
#include "common/paths.h"
#include "common/printable.h"
#include "common/systemReasons.h"
#include "text/encodings.h"
#include "text/errors.h"

#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>
#include <vector>

namespace
{

using namespace qel::host;

constexpr int Failed = 1;
constexpr int Misused = 2;

int Run(const std::vector<std::string>& myTexts)
{
    CLI::App myApplication("Makes small web sites whose pages contain animation modules, and builds them.", "qelhost");
    myApplication.set_version_flag("--version", "qelhost " QELHOST_VERSION);
    myApplication.require_subcommand(1);
    myApplication.fallthrough();
    myApplication.allow_windows_style_options(false); // "/" begins a path
    myApplication.failure_message(MisuseMessage);
    Arguments myArguments;
    AddPath(myApplication, "--plugin", myArguments.Plugin,
            "The component's file; without it the registered component, or the one beside this program")
        ->type_name("FILE");
    AddSiteCommands(myApplication, myArguments);
    AddPageCommands(myApplication, myArguments);
    AddRecordCommands(myApplication, myArguments);
    AddModuleCommands(myApplication, myArguments);
    AddArchiveCommands(myApplication, myArguments);
    AddComponentCommands(myApplication, myArguments);
    AddCheckCommands(myApplication, myArguments);
    // Only now, because commands inherit the footer that is set when they are added.
    myApplication.footer("A first site:\n"
                         "  qelhost init mysite --title \"My site\"\n"
                         "  qelhost page add mysite index.html\n"
                         "  qelhost module add mysite index.html\n"
                         "  qelhost module edit mysite 1\n"
                         "  qelhost preview mysite\n"
                         "qelhost COMMAND --help explains a command.");
    DemandKnownCommands(myApplication, myTexts);
    try
    {
        myApplication.parse(std::vector(myTexts.rbegin(), myTexts.rend())); // the first one at the end
        std::cout.flush();
        return std::cout ? 0 : throw Failure("the standard output cannot be written");
    }
    catch (const CLI::RuntimeError& myEnd) // a command that has reported what failed
    {
        return myEnd.get_exit_code();
    }
    catch (const CLI::ParseError& myError)
    {
        return myApplication.exit(myError) == 0 ? 0 : Misused;
    }
}

int Fail(const std::string& myText, int myCode)
{
    std::cerr << "qelhost: " << myText << "." << std::endl;
    return myCode;
}

} // namespace

int main(int myCount, char** myTexts)
{
    PrepareStandardStreams();
    try
    {
        return Run(CommandLine(myCount, myTexts));
    }
    catch (const UsageFailure& myFailure)
    {
        return Fail(myFailure.what(), Misused);
    }
    catch (const qel::Error& myError)
    {
        return Fail(qel::ToUtf8(myError.Description), Failed);
    }
    catch (const std::filesystem::filesystem_error& myError)
    {
        return Fail("cannot use " + Printable(TextOf(myError.path1())) + ": " + ReasonOf(myError.code()), Failed);
    }
    catch (const std::bad_alloc&)
    {
        return Fail("there is not enough memory", Failed);
    }
    catch (const std::exception& myError)
    {
        return Fail(myError.what(), Failed);
    }
}
