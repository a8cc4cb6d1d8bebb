#include "module/moduleScript.h"

#include "module/localConstants.h"
#include "resources/stringTable.h"
#include "tags/classScript.h"
#include "tags/classTagBuilder.h"
#include "tags/pluginFunctions.h"

#include <algorithm>

namespace qel
{
namespace
{

constexpr TextView ScriptVersion = u"1.0";

/// How one setting is written in the script.
struct Param
{
    TextView Name;
    Text (*Write)(const ModuleSettings&);
    void (*Read)(ModuleSettings&, TextView myValue);
};

template <Text ModuleSettings::*Field>
constexpr Param TextParam(TextView myName)
{
    return {myName, [](const ModuleSettings& s) { return s.*Field; },
            [](ModuleSettings& s, TextView v)
            {
                s.*Field = v;
            }};
}

template <bool ModuleSettings::*Field>
constexpr Param BooleanParam(TextView myName)
{
    return {myName, [](const ModuleSettings& s) { return BooleanToText(s.*Field); },
            [](ModuleSettings& s, TextView v)
            {
                s.*Field = TextToBoolean(v);
            }};
}

template <Date ModuleSettings::*Field>
constexpr Param DateParam(TextView myName)
{
    return {myName, [](const ModuleSettings& s) { return NumberText(int64_t{NearestDay(s.*Field)}); },
            [](ModuleSettings& s, TextView v)
            {
                s.*Field = CheckedDate(NumericPrefix(v));
            }};
}

/// The name of the mode. Empty for any other number, so that no value is written.
Text WriteImageMode(const ModuleSettings& mySettings)
{
    switch (mySettings.myImageMode)
    {
    case ImageMode::None:
        return u"none";
    case ImageMode::Gif:
        return u"gif";
    case ImageMode::Jpeg:
        return u"jpg";
    }
    return {};
}

void ReadImageMode(ModuleSettings& theSettings, TextView myValue)
{
    theSettings.myImageMode = myValue == u"jpg"   ? ImageMode::Jpeg
                              : myValue == u"gif" ? ImageMode::Gif
                                                  : ImageMode::None;
}

/// In the order in which they are written.
constexpr Param Params[] = {
    TextParam<&ModuleSettings::myImage>(u"image"),
    TextParam<&ModuleSettings::myImageFolder>(u"imagefolder"),
    TextParam<&ModuleSettings::myMIDI>(u"midi"),
    TextParam<&ModuleSettings::myMIDIFolder>(u"midifolder"),
    {u"imagemode", WriteImageMode, ReadImageMode},
    BooleanParam<&ModuleSettings::myMIDIMode>(u"midimode"),
    BooleanParam<&ModuleSettings::myShowImage>(u"showimage"),
    BooleanParam<&ModuleSettings::myPlayMIDI>(u"playmidi"),
    DateParam<&ModuleSettings::myFrom>(u"from"),
    DateParam<&ModuleSettings::myTo>(u"to"),
    TextParam<&ModuleSettings::myLink>(u"link"),
};

void ReadParam(const classScript& myScript, ModuleSettings& theSettings)
{
    const TextView myName = myScript.QueryAttribute(u"name");
    const auto* myParam =
        std::find_if(std::begin(Params), std::end(Params), [&](const Param& p) { return p.Name == myName; });
    if (myParam != std::end(Params))
    {
        myParam->Read(theSettings, myScript.QueryAttribute(u"value"));
    }
}

/// A builder prepared for the first tag of a script.
classTagBuilder MakePluginTag()
{
    classTagBuilder theBuilder;
    theBuilder.Prefix(u"pg.");
    theBuilder.BaseTag(u"plugin");
    theBuilder.AddAttribute(u"uid", ComponentVersion.ProjectName);
    theBuilder.AddAttribute(u"version", ScriptVersion);
    return theBuilder;
}

} // namespace

Text InitialScript()
{
    return MakePluginTag().Tag();
}

Text WriteScript(const ModuleSettings& mySettings)
{
    classTagBuilder myBuilder = MakePluginTag();
    Text theResult = myBuilder.Tag().append(LineEnd);
    if (!mySettings.myFilename.empty())
    {
        myBuilder.BaseTag(u"file");
        myBuilder.Clear();
        myBuilder.AddAttribute(u"filename", mySettings.myFilename);
        theResult.append(myBuilder.Tag()).append(LineEnd);
    }
    myBuilder.BaseTag(u"param");
    for (const Param& myParam : Params)
    {
        myBuilder.Clear();
        myBuilder.AddAttribute(u"name", myParam.Name);
        myBuilder.AddAttribute(u"value", myParam.Write(mySettings));
        theResult.append(myBuilder.Tag()).append(LineEnd);
    }
    return theResult;
}

bool ReadScript(classScript& myScript, ModuleSettings& theSettings)
{
    for (; myScript.TagType() != TokenType::None; myScript.GetNextTag())
    {
        if (myScript.TagType() != TokenType::OpeningTag)
        {
            continue;
        }
        const TextView myBaseTag = myScript.BaseTag();
        if (myBaseTag == u"plugin" && myScript.QueryAttribute(u"version") != ScriptVersion)
        {
            return false;
        }
        if (myBaseTag == u"file")
        {
            theSettings.myFilename = myScript.QueryAttribute(u"filename");
        }
        else if (myBaseTag == u"param")
        {
            ReadParam(myScript, theSettings);
        }
    }
    return true;
}

} // namespace qel
