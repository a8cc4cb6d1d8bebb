/// Scripts of modules, and the texts of the component about them.
#pragma once

#include "com/interfaceTables.h"
#include "text/text.h"

namespace qel::host
{

// ---- Scripts ----

/// A script that asks for everything: archive, picture, tune, period, and a link to a record.
constexpr TextView FullScript = u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n"
                                u"<pg.file filename=\"archivo.dat\">\r\n"
                                u"<pg.param name=\"image\" value=\"qelspr.gif\">\r\n"
                                u"<pg.param name=\"imagefolder\" value=\"(USER)\">\r\n"
                                u"<pg.param name=\"midi\" value=\"qelmid.mid\">\r\n"
                                u"<pg.param name=\"midifolder\" value=\"(USER)\">\r\n"
                                u"<pg.param name=\"imagemode\" value=\"gif\">\r\n"
                                u"<pg.param name=\"midimode\" value=\"1\">\r\n"
                                u"<pg.param name=\"showimage\" value=\"1\">\r\n"
                                u"<pg.param name=\"playmidi\" value=\"1\">\r\n"
                                u"<pg.param name=\"from\" value=\"38353\">\r\n"
                                u"<pg.param name=\"to\" value=\"38383\">\r\n"
                                u"<pg.param name=\"link\" value=\"UID:4711\">\r\n";

/// The script of a module with nothing chosen.
constexpr TextView DefaultScript = u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n"
                                   u"<pg.param name=\"image\">\r\n"
                                   u"<pg.param name=\"imagefolder\">\r\n"
                                   u"<pg.param name=\"midi\">\r\n"
                                   u"<pg.param name=\"midifolder\">\r\n"
                                   u"<pg.param name=\"imagemode\" value=\"none\">\r\n"
                                   u"<pg.param name=\"midimode\" value=\"0\">\r\n"
                                   u"<pg.param name=\"showimage\" value=\"1\">\r\n"
                                   u"<pg.param name=\"playmidi\" value=\"1\">\r\n"
                                   u"<pg.param name=\"from\" value=\"0\">\r\n"
                                   u"<pg.param name=\"to\" value=\"0\">\r\n"
                                   u"<pg.param name=\"link\">\r\n";

/// FullScript with another link, as a script has it.
Text LinkedScript(TextView myLink);

/// A tag of a script with a setting, and one without a value.
Text Param(TextView myName, TextView myValue);
Text EmptyParam(TextView myName);

// ---- Texts about a module ----

constexpr TextView ErrorPage = u"[Error de plug-in]";
constexpr TextView NothingChosen = u"No se ha seleccionado ningún motivo.";

/// What ErrorText says of an error with this number and reason.
Text PluginFailure(int64_t myNumber, TextView myReason);

// ---- Members that give texts ----

using TextMember = HRESULT (STDMETHODCALLTYPE QelPlugin::*)(BSTR*);

/// The members that give texts, in the order of their slots.
inline constexpr struct
{
    TextView Name;
    TextMember Read;
} TextMembers[] = {
    {u"InitialScript", &QelPlugin::get_InitialScript},
    {u"Output", &QelPlugin::get_Output},
    {u"TextFunction", &QelPlugin::get_TextFunction},
    {u"TextRequirementsServer", &QelPlugin::get_TextRequirementsServer},
    {u"TextRequirementsClient", &QelPlugin::get_TextRequirementsClient},
    {u"TextSettings", &QelPlugin::get_TextSettings},
    {u"TextConfig", &QelPlugin::get_TextConfig},
    {u"Description", &QelPlugin::get_Description},
    {u"PreviewImageFilename", &QelPlugin::get_PreviewImageFilename},
    {u"LogoFilename", &QelPlugin::get_LogoFilename},
    {u"Script", &QelPlugin::get_Script},
    {u"ErrorText", &QelPlugin::get_ErrorText},
};

/// Reads a text, with one of the members above. The call has to succeed.
Text Read(QelPlugin& myPlugin, TextMember myMember);
HRESULT Write(QelPlugin& myPlugin, TextView myScript);

/// The texts that are the same for every module.
inline constexpr struct
{
    TextView Name;
    TextMember Read;
    TextView Value;
} FixedTexts[] = {
    {u"InitialScript", &QelPlugin::get_InitialScript, u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">"},
    {u"TextFunction", &QelPlugin::get_TextFunction,
     u"Este plug-in coloca objetos gráficos animados en su sitio web. Si desea obtener más detalles, consulte la "
     u"<help type=\"plugin\" id=\"100\" caption=\"Ayuda del plug-in\">."},
    {u"TextRequirementsServer", &QelPlugin::get_TextRequirementsServer,
     u"Este plug-in no exige <b>ninguna</b> característica especial para el servidor web utilizado."},
    {u"TextRequirementsClient", &QelPlugin::get_TextRequirementsClient,
     u"El plug-in requiere que su navegador web sea capaz de ejecutar <b>JavaScript</b>."},
    {u"TextConfig", &QelPlugin::get_TextConfig,
     u"Haga clic <callback type=0 icon=1 caption=\"aquí\"> para seleccionar un motivo y una música."},
    {u"Description", &QelPlugin::get_Description, u"Mueve objetos gráficos animados en su sitio web."},
    {u"PreviewImageFilename", &QelPlugin::get_PreviewImageFilename, u"QelPluginAnimationPreview.bmp"},
    {u"LogoFilename", &QelPlugin::get_LogoFilename, u"QelPluginAnimationLogo.bmp"},
};

Text ScriptOf(QelPlugin& myPlugin);

} // namespace qel::host
