/// The settings dialog: the real window of the built component, opened through its entry points and worked by a user
/// with mouse and keys; and its logic on a window that keeps a record, for what cannot be seen from outside.
#include "dialog/FormMainDialog.h"
#include "dialog/pictureSize.h"
#include "DialogUser.h"
#include "ErrorOf.h"
#include "platform/linux/GifFile.h"
#include "platform/linux/JpegFile.h"
#include "resources/stringTable.h"
#include "TemporaryFolder.h"

#include <malloc.h>

namespace qel
{

const char16_t* const ErrorSource = u"dialog_test";

namespace
{

namespace fs = std::filesystem;

/// A picture in one colour, with a second image if it is to be animated.
std::string Gif(int myWidth, int myHeight, GifColour myColour = {255, 0, 0}, bool myAnimated = false)
{
    GifImage myImage;
    myImage.Width = myWidth;
    myImage.Height = myHeight;
    myImage.Indices = std::make_unique<uint8_t[]>(static_cast<size_t>(myWidth) * static_cast<size_t>(myHeight));
    myImage.Palette[0] = myColour;
    const std::vector<uint8_t> myFile = WriteGif(GifPicture(myWidth, myHeight, false, std::move(myImage)));
    std::string theFile(myFile.begin(), myFile.end());
    constexpr size_t Head = 6 + 7 + 3 * 256;
    return myAnimated ? theFile.substr(0, theFile.size() - 1) + theFile.substr(Head) : theFile;
}

std::string Jpeg(int myWidth, int myHeight)
{
    const auto mySize = static_cast<size_t>(myWidth) * static_cast<size_t>(myHeight) * 4;
    const std::vector<uint8_t> myFile = WriteJpeg({myWidth, myHeight, std::vector<uint8_t>(mySize, 100)}, 90);
    return {myFile.begin(), myFile.end()};
}

/// A fresh folder with a library, a data folder and a temporary path for each test; the component lies in a folder of
/// its own that all share.
class DialogTest : public testing::Test
{
protected:
    DialogTest()
    {
        static const TemporaryFolder theStage;
        for (const char* myFile : {"QelPluginAnimation.so", "QelPluginAnimationWindow.so"})
        {
            fs::copy_file(fs::path(QEL_STAGE) / myFile, theStage.Native(myFile), fs::copy_options::skip_existing);
        }
        fs::remove(theStage.Native("QelPluginAnimationDesigns"));
        myFolder.MakeFolder("library");
        fs::create_symlink(myFolder.Native("library"), theStage.Native("QelPluginAnimationDesigns"));
        myFolder.MakeFolder("data");
        myFolder.MakeFolder("tmp");
        fs::permissions(myFolder.Native("tmp"), fs::perms::owner_all);
        setenv("TMPDIR", myFolder.Native("tmp").c_str(), 1);
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        FillLibrary();
        myHost = std::make_unique<DialogHost>(theStage.Native("QelPluginAnimation.so"));
        myHost->Records->DataFolder = FromUtf8(myFolder.Native("data/"));
        myHost->Script(u"");
    }
    ~DialogTest() override { unsetenv("TMPDIR"); }

    void FillLibrary() const
    {
        myFolder.Write("library/Fiestas/Globo.gif", Gif(40, 30));
        myFolder.Write("library/Fiestas/globo.GIF", Gif(41, 31, {0, 0, 255}, true));
        myFolder.Write("library/Fiestas/Vela.roja.gif", Gif(350, 250));
        myFolder.Write("library/Fiestas/nota.txt", "");
        myFolder.Write("library/Fiestas/Vals.mid", "tune");
        myFolder.Write("library/Solo tonos/Minueto.mid", "tune");
        myFolder.Write("library/animales/perro.gif", "no picture");
        myFolder.Write("library/leame.txt", "");
    }

    /// The script of some settings, from "name=value|name=value".
    void Script(const QString& mySettings, const QString& myArchive = {}) const
    {
        QString myScript = "<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">";
        myScript += myArchive.isEmpty() ? "" : "<pg.file filename=\"" + myArchive + "\">";
        for (const QString& mySetting : mySettings.split('|'))
        {
            myScript += QString("<pg.param name=\"%1\" value=\"%2\">").arg(mySetting.section('=', 0, 0),
                                                                         mySetting.section('=', 1));
        }
        myHost->Script(myScript.toStdU16String());
    }

    /// What the script stores of the settings named, "|" between them; "file" is the archive's name.
    QString Stored(const QString& myNames) const
    {
        QStringList theValues;
        const QString myScript = QString::fromStdU16String(myHost->Script());
        for (const QString& myName : myNames.split('|'))
        {
            const QString myMark = myName == "file" ? "filename=\"" : "name=\"" + myName + "\" value=\"";
            theValues << (myScript.contains(myMark) ? myScript.section(myMark, 1).section('"', 0, 0) : "");
        }
        return theValues.join('|');
    }

    static QString Entries(const char* myName)
    {
        QStringList theEntries;
        const auto& myModel = *Control<QWidget>(myName).property("model").value<QAbstractItemModel*>();
        for (int i = 0; i < myModel.rowCount(); ++i)
        {
            theEntries << myModel.index(i, 0).data().toString();
        }
        return theEntries.join('|');
    }

    TemporaryFolder myFolder;
    std::unique_ptr<DialogHost> myHost;
};
