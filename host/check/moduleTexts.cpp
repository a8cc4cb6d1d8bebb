#include "check/moduleTexts.h"

#include "check/expectations.h"
#include "com/Bstr.h"
#include "text/encodings.h"

#include <algorithm>

namespace qel::host
{

Text LinkedScript(TextView myLink)
{
    return ReplaceAll(FullScript, u"UID:4711", myLink);
}

Text Param(TextView myName, TextView myValue)
{
    return JoinTexts({u"<pg.param name=\"", myName, u"\" value=\"", myValue, u"\">"});
}

Text EmptyParam(TextView myName)
{
    return JoinTexts({u"<pg.param name=\"", myName, u"\">"});
}

Text PluginFailure(int64_t myNumber, TextView myReason)
{
    return u"El plug-in \"Orvenal\" ha provocado el error \"" + NumberText(myNumber) + u": " + Text(myReason) + u"\".";
}

Text ScriptOf(QelPlugin& myPlugin)
{
    return Read(myPlugin, &QelPlugin::get_Script);
}

Text Read(QelPlugin& myPlugin, TextMember myMember)
{
    Bstr theText;
    const auto* const myNamed =
        std::ranges::find_if(TextMembers, [&](const auto& myOne) { return myOne.Read == myMember; });
    ExpectResult("reading " + ToUtf8(myNamed->Name), S_OK, (myPlugin.*myMember)(theText.Pointer()));
    return theText.Value();
}

HRESULT Write(QelPlugin& myPlugin, TextView myScript)
{
    Bstr myText(myScript);
    return myPlugin.put_Script(myText.Pointer());
}

} // namespace qel::host
