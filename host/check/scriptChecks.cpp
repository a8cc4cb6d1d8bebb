// Checks of what is written to Script and read from it.
#include "check/moduleTexts.h"
#include "check/OpenedComponent.h"
#include "com/Bstr.h"

#include <array>
#include <random>

namespace qel::host
{

namespace
{

void Initial(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    for (const Text& myScript : {Read(*myPlugin.Get(), &QelPlugin::get_InitialScript), Text()})
    {
        ExpectResult("writing " + Shown(myScript), S_OK, Write(*myPlugin.Get(), myScript));
        ExpectText("the script after it", DefaultScript, ScriptOf(*myPlugin.Get()));
        ExpectText("ErrorText after it", u"", Read(*myPlugin.Get(), &QelPlugin::get_ErrorText));
        ExpectPart("TextSettings after it", u"<callback type=0 icon=1 caption=\"aquí\">",
                   Read(*myPlugin.Get(), &QelPlugin::get_TextSettings));
    }
    BSTR myNull = nullptr;
    ExpectResult("writing a null text", S_OK, myPlugin->put_Script(&myNull));
    ExpectText("the script after it", DefaultScript, ScriptOf(*myPlugin.Get()));
}

void RoundTrip(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    const Text myEscaped = LinkedScript(u"URL:a&amp;b&lt;&gt;&quot;'ñ\U0001F388");
    for (const Text& myScript : {Text(FullScript), myEscaped, Text(DefaultScript)})
    {
        Bstr myText(myScript);
        ExpectResult("writing a script", S_OK, myPlugin->put_Script(myText.Pointer()));
        ExpectText("the caller's text after it", myScript, myText.Value());
        ExpectText("the script that comes back", myScript, ScriptOf(*myPlugin.Get()));
    }
    ExpectResult("writing a script of everything", S_OK, Write(*myPlugin.Get(), FullScript));
    ExpectText("its summary, TextSettings",
               u"Se muestra el motivo personalizado por el usuario. Se reproduce un sonido de fondo personalizado por "
               u"el usuario.El control de tiempo se ha activado.",
               Read(*myPlugin.Get(), &QelPlugin::get_TextSettings));
}

void OtherVersion(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    for (const TextView myVersion : {u" version=\"1.00\"", u" version=\"2.0\"", u""})
    {
        const Text myScript = ReplaceAll(FullScript, u" version=\"1.0\"", myVersion);
        ExpectResult("writing a script of another version", S_OK, Write(*myPlugin.Get(), myScript));
        ExpectText("ErrorText after it", NothingChosen, Read(*myPlugin.Get(), &QelPlugin::get_ErrorText));
        ExpectText("the script after it", DefaultScript, ScriptOf(*myPlugin.Get()));
        ExpectText("its page", u"", Read(*myPlugin.Get(), &QelPlugin::get_Output));
    }
}

constexpr std::array<TextView, 26> ScriptPieces{u"<pg.param",
                                                u"<pg.plugin",
                                                u"<pg.file",
                                                u"</pg.param>",
                                                u"<",
                                                u">",
                                                u" name=",
                                                u" value=",
                                                u" filename=",
                                                u"\"image\"",
                                                u"\"link\"",
                                                u"\"from\"",
                                                u"\"to\"",
                                                u"\"midi\"",
                                                u"\"",
                                                u"'",
                                                u"\r\n",
                                                u"&amp;",
                                                u"&quot;",
                                                u"&",
                                                u"38353.5",
                                                u"-1e99",
                                                u"\xD800",
                                                u"\xDC00",
                                                TextView(u"\0", 1),
                                                u" version=\"1.0\""};

constexpr int ScriptCount = 2000;
constexpr size_t LongestScript = 40; ///< in pieces

void RandomScripts(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    std::minstd_rand myRandom(1); // the same scripts each time
    for (int i = 0; i < ScriptCount; ++i)
    {
        Text myScript;
        for (size_t myRest = myRandom() % LongestScript; myRest > 0; --myRest)
        {
            myScript += ScriptPieces[myRandom() % ScriptPieces.size()];
            myScript += myRandom() % 4 == 0 ? Text(1, static_cast<char16_t>(myRandom())) : Text();
        }
        const std::string myWhat = "script " + std::to_string(i) + ", " + Shown(myScript);
        const HRESULT myResult = Write(*myPlugin.Get(), myScript);
        ExpectResult(myWhat, myResult == S_OK ? S_OK : QEL_RESULT(0x800A0006U), myResult); // a date out of range
        const Text myFirst = ScriptOf(*myPlugin.Get());
        ExpectResult("writing back what came of " + myWhat, S_OK, Write(*myPlugin.Get(), myFirst));
        ExpectText("what came of " + myWhat + " comes back", myFirst, ScriptOf(*myPlugin.Get()));
    }
}

constexpr size_t HugeLength = 8U << 20U; // 16 MB in UTF-16

void HugeScripts(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    const auto ExpectLink = [&](const std::string& myWhat, const Text& myScript, TextView myLink)
    {
        ExpectResult("writing " + myWhat, S_OK, Write(*myPlugin.Get(), myScript));
        const Text theScript = ScriptOf(*myPlugin.Get());
        ExpectText("the script after " + myWhat,
                   ReplaceAll(DefaultScript, u"\"link\"", Text(u"\"link\" value=\"").append(myLink).append(u"\"")),
                   theScript);
    };
    const Text myValue(HugeLength, u'x');
    ExpectLink("16 MB in one value", Param(u"link", myValue), myValue);
    Text myTags;
    while (myTags.size() < HugeLength)
    {
        myTags += Param(u"link", u"a");
    }
    ExpectLink("16 MB of tags", myTags, u"a");
    ExpectLink("16 MB without an end of a tag", Param(u"link", u"b") + Text(HugeLength, u'<'), u"b");
}

constexpr Check ScriptCheckList[] = {
    {"script.initial", "The initial script and the empty one give a module with nothing chosen", Initial},
    {"script.round-trip", "What was written to Script comes back", RoundTrip},
    {"script.other-version", "A script of another version gives a module with nothing chosen, and the reason",
     OtherVersion},
    {"script.random", "Malformed scripts are read in a defined way, and written back as they were read", RandomScripts},
    {"script.huge", "Scripts of 16 MB are read in good time and nothing of them is lost", HugeScripts},
};

} // namespace

std::span<const Check> ScriptChecks()
{
    return ScriptCheckList;
}

} // namespace qel::host
