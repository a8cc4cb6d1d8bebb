// Checks of the two computed texts about a module: its summary and the reason of the last failure.
#include "check/ServedPlugin.h"
#include "text/encodings.h"

namespace qel::host
{

namespace
{

constexpr TextView NoPicture = u"<warning>Aún no ha seleccionado ningún motivo que representar. Haga clic <callback "
                               u"type=0 icon=1 caption=\"aquí\"> para seleccionar un motivo y una música.";
constexpr TextView PeriodSummary = u"El control de tiempo se ha activado.";

/// Settings of the picture or the tune, and the part of the summary about them.
struct SummaryPart
{
    TextView Name;
    TextView Folder;
    TextView IsOn;
    TextView Text;
};

constexpr SummaryPart Pictures[] = {
    {u"Globo.gif", u"Fiestas", u"1", u"Se muestra el motivo <b>\"Globo\"</b>. "},
    {u"qelspr.gif", u"(USER)", u"1", u"Se muestra el motivo personalizado por el usuario. "},
    {u"Globo.gif", u"Fiestas", u"0", u"No se muestra ninguna animación. "},
    {u"qelspr.gif", u"(USER)", u"0", u"No se muestra ninguna animación. "},
    {u"Globo.jpeg", u"", u"1", u"Se muestra el motivo <b>\"Globo.\"</b>. "},
    {u".gif", u"(user)", u"1", u"Se muestra el motivo <b>\"\"</b>. "},
    {u"a", u"", u"0", u"No se muestra ninguna animación. "},
    {u"a", u"(USER)", u"1", u"Se muestra el motivo personalizado por el usuario. "},
};
constexpr SummaryPart Tunes[] = {
    {u"Vals.mid", u"Fiestas", u"1", u"Se reproduce el sonido de fondo <b>\"Vals\"</b>. "},
    {u"qelmid.mid", u"(USER)", u"1", u"Se reproduce un sonido de fondo personalizado por el usuario."},
    {u"Vals.mid", u"Fiestas", u"0", u"No se reproduce ningún sonido de fondo. "},
    {u"", u"", u"0", u"No se reproduce ningún sonido de fondo. "},
    {u"", u"(USER)", u"1", u"Se reproduce un sonido de fondo personalizado por el usuario."},
    {u"Año &amp; %1.mid", u"(personalizado)", u"1", u"Se reproduce el sonido de fondo <b>\"Año & %1\"</b>. "},
};
constexpr struct
{
    TextView From;
    TextView To;
    bool IsSet;
} Periods[] = {
    {u"0", u"0", false},   {u"38353", u"38383", true}, {u"38353", u"0", true}, {u"0", u"38383", true},
    {u"0.5", u"0", false}, {u"0.6", u"0", true},       {u"0", u"-0.6", true},  {u"-5", u"0", true},
};

Text SummaryScript(const SummaryPart& myPicture, const SummaryPart& myTune, TextView myFrom, TextView myTo)
{
    return Param(u"image", myPicture.Name) + Param(u"imagefolder", myPicture.Folder) +
           Param(u"showimage", myPicture.IsOn) + Param(u"midi", myTune.Name) + Param(u"midifolder", myTune.Folder) +
           Param(u"playmidi", myTune.IsOn) + Param(u"from", myFrom) + Param(u"to", myTo);
}

void Summaries(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    const auto ExpectSummary = [&](const Text& myScript, const Text& mySummary)
    {
        ExpectResult("writing " + Shown(myScript), S_OK, Write(*myPlugin.Get(), myScript));
        ExpectText("TextSettings after " + Shown(myScript), mySummary,
                   Read(*myPlugin.Get(), &QelPlugin::get_TextSettings));
    };
    for (const SummaryPart& myTune : Tunes)
    {
        for (const auto& [myFrom, myTo, isSet] : Periods)
        {
            for (const SummaryPart& myPicture : Pictures)
            {
                ExpectSummary(SummaryScript(myPicture, myTune, myFrom, myTo),
                              JoinTexts({myPicture.Text, myTune.Text, isSet ? PeriodSummary : TextView()}));
            }
            ExpectSummary(SummaryScript({u"", u"Fiestas", u"1", u""}, myTune, myFrom, myTo), Text(NoPicture));
        }
    }
}

void ShortNames(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    const Text myScripts[] = {
        Param(u"image", u"abc"),
        Param(u"image", u"Globo.gif"), // the tune has no name
        Param(u"image", u"Globo.gif") + Param(u"midi", u"abc"),
    };
    for (const Text& myScript : myScripts)
    {
        Bstr theText;
        ExpectResult("writing " + Shown(myScript), S_OK, Write(*myPlugin.Get(), myScript));
        ExpectResult("TextSettings after " + Shown(myScript), QEL_RESULT(0x800A0005U),
                     myPlugin->get_TextSettings(theText.Pointer()));
        const FailureTexts myFailure;
        Expect("it says why it failed", !myFailure.Description.empty());
    }
}

void Reasons(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ServedPlugin myServed(myComponent, myContext);
    const auto ExpectReason = [&](const std::string& myWhat, TextView myPart)
    {
        const Text theReason = Read(*myServed.Plugin.Get(), &QelPlugin::get_ErrorText);
        if (myPart.empty())
        {
            ExpectText(myWhat, u"", theReason);
            return;
        }
        ExpectPart(myWhat, myPart, theReason);
    };
    ExpectText("the page of a module without a picture", u"", myServed.Output(u"<pg.param name=\"link\">"));
    ExpectReason("ErrorText of it", NothingChosen);
    ExpectResult("writing a script", S_OK, Write(*myServed.Plugin.Get(), FullScript));
    ExpectReason("ErrorText after the next script", u"");
    myServed.State.AtEnd = true;
    ExpectText("a page whose record is not found", ErrorPage, myServed.Output(FullScript));
    ExpectReason("ErrorText of it", u"El vínculo no funciona.");
    Read(*myServed.Plugin.Get(), &QelPlugin::get_TextSettings);
    ScriptOf(*myServed.Plugin.Get());
    ExpectReason("ErrorText after reading other texts", u"El vínculo no funciona.");
    myServed.State.AtEnd = false;
    ExpectPart("the page once the record is there again", u"</script>",
               Read(*myServed.Plugin.Get(), &QelPlugin::get_Output));
    ExpectReason("ErrorText, which a success leaves as it is", u"El vínculo no funciona.");
    ExpectPart("the page of the same script, written again", u"</script>", myServed.Output(FullScript));
    ExpectReason("ErrorText after the script was written again", u"");
}

/// A change of the host's folders that a page of FullScript fails for, and the number of the error.
constexpr struct
{
    const char* What;
    const char* Removed; ///< below the check's folder
    const char* Put;     ///< a file to write instead, or null
    TextView Number;
} Losses[] = {
    {"without its archive", "data/archivo.dat", nullptr, u"53"},
    {"with an archive of something else", "data/archivo.dat", "data/archivo.dat", u"53"},
    {"without a folder for pictures", "images", nullptr, u"76"},
    {"without a folder for tunes", "media", nullptr, u"76"},
};

void ErrorNumbers(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    for (const auto& myLoss : Losses)
    {
        const ServedPlugin myServed(myComponent, myContext);
        std::filesystem::remove_all(myLoss.Removed);
        if (myLoss.Put != nullptr)
        {
            WriteFile(myLoss.Put, "paper");
        }
        const std::string myWhat = std::string("a page ") + myLoss.What;
        ExpectText(myWhat, ErrorPage, myServed.Output(FullScript));
        const Text theReason = Read(*myServed.Plugin.Get(), &QelPlugin::get_ErrorText);
        ExpectPart("ErrorText of " + myWhat,
                   JoinTexts({u"El plug-in \"Orvenal\" ha provocado el error \"", myLoss.Number, u": "}), theReason);
        Expect("ErrorText of " + myWhat + " ends in a description, a quotation mark and a full stop",
               theReason.ends_with(u"\".") && !theReason.ends_with(u": \"."));
    }
    const ServedPlugin myServed(myComponent, myContext);
    WriteFile("data/archivo.dat", ArchiveOf({{"\\qelspr.gif", "paper"}, {"\\qelmid.mid", "MThd"}}));
    ExpectText("a page with a picture that is none", ErrorPage, myServed.Output(FullScript));
    ExpectPart("ErrorText of it", u"\"481: ", Read(*myServed.Plugin.Get(), &QelPlugin::get_ErrorText));
}

constexpr Check SummaryCheckList[] = {
    {"texts.summaries", "The summary has its parts for picture, tune and period, in every combination", Summaries},
    {"texts.short-names", "The summary fails for a name that is shorter than an ending", ShortNames},
    {"texts.reasons", "The reason of a failure stays until the next script is written, and no longer", Reasons},
    {"texts.error-numbers", "A page that fails names the number of the error and a reason", ErrorNumbers},
};

} // namespace

std::span<const Check> SummaryChecks()
{
    return SummaryCheckList;
}

} // namespace qel::host
