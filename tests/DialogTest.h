/// The fixture of the tests of the settings dialog.
#pragma once

#include "DialogDriver.h"
#include "Environment.h"
#include "madePictures.h"
#include "TemporaryFolder.h"

#include <functional>
#include <gtest/gtest.h>
#include <sstream>

namespace qel
{

/// The parts of a text, without the separator.
inline std::vector<std::string> PartsOf(const std::string& myText, char mySeparator)
{
    std::vector<std::string> theParts;
    std::istringstream myRest(myText);
    for (std::string myPart; std::getline(myRest, myPart, mySeparator);)
    {
        theParts.push_back(myPart);
    }
    return theParts;
}

/// A fresh folder with a library, a data folder and a temporary path for each test.
class DialogTest : public testing::Test
{
protected:
    DialogTest()
    {
        for (const char* const myFile : {"Fiestas/perla.GIF", "Fiestas/nota.txt", "Fiestas/Vals.mid",
                                         "Solo tonos/Minueto.mid", "animales/perro.gif", "leame.txt"})
        {
            myFolder.Write(std::string("QelPluginAnimationDesigns/") + myFile, "tune");
        }
        myFolder.Write("QelPluginAnimationDesigns/Fiestas/Globo.gif", Gif(40, 30));
        myFolder.Write("QelPluginAnimationDesigns/Fiestas/Vela.azul.gif", Gif(350, 250, {0, 0, 255}, true));
        myFolder.MakeFolder("data");
        myFolder.MakeFolder("tmp");
        std::filesystem::permissions(myFolder / "tmp", std::filesystem::perms::owner_all);
        PlaceComponent(myFolder, myEnvironment);
        myEnvironment.Set(TemporaryFolderVariable, myFolder.Native("tmp"));
    }

    /// Opens the dialog on a module with these settings, from "name=value|name=value" where "file" is its archive, and
    /// lets a user work in it. Returns what the host has seen: how the dialog ended, and the script after it.
    std::string Open(const std::string& mySettings, const std::function<void(DialogDriver&)>& myUser,
                     const std::string& myMode = "") const
    {
        std::string myScript = "<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">";
        for (const std::string& mySetting : PartsOf(mySettings, '|'))
        {
            const size_t mySign = mySetting.find('=');
            const std::string myName = mySetting.substr(0, mySign);
            const std::string myValue = mySetting.substr(mySign + 1);
            myScript += myName == "file" ? "<pg.file filename=\"" + myValue + "\">"
                                         : "<pg.param name=\"" + myName + "\" value=\"" + myValue + "\">";
        }
        return RunDialog(myFolder, myScript, myUser, myMode);
    }

    /// How the dialog ended, and what its script stores of the settings named, "|" between all.
    static std::string Stored(const std::string& myResult, const std::string& myNames)
    {
        std::string theValues = myResult.substr(0, myResult.find('\n'));
        for (const std::string& myName : PartsOf(myNames, '|'))
        {
            const std::string myMark = myName == "file" ? "filename=\"" : "name=\"" + myName + "\" value=\"";
            const size_t myPlace = myResult.find(myMark);
            const size_t myStart = myPlace + myMark.size();
            const bool myIsThere = myPlace != std::string::npos;
            theValues += "|" + (myIsThere ? myResult.substr(myStart, myResult.find('"', myStart) - myStart) : "");
        }
        return theValues;
    }

    /// The tune that has been played since the last call; empty when there was none.
    std::string Played() const
    {
        const std::string theTune = myFolder.Read("tmp/qelmid.mid");
        std::filesystem::remove(myFolder / "tmp/qelmid.mid");
        return theTune;
    }

    const TemporaryFolder myFolder;
    Environment myEnvironment;
};

} // namespace qel
