/// Makes the pictures of the settings dialog that the documents show: dialog_pictures FOLDER
#include "dialogHost.h"
#include "TemporaryFolder.h"

namespace qel
{

const char16_t* const ErrorSource = u"dialog_pictures";

namespace
{

/// The last step in a dialog: saves a picture of the window and closes it.
Step Photograph(const std::string& myFile)
{
    return Dialog(
        [=]
        {
            EXPECT_TRUE(DialogUser::Front()->grab().save(QString::fromStdString(myFile)));
            Click("cmdCancel");
        });
}

void MakePictures(const std::string& myTarget)
{
    const TemporaryFolder myFolder;
    setenv("TMPDIR", myFolder.Native().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    myFolder.Write("tune.mid", "");
    const DialogHost myHost(QEL_STAGE "/QelPluginAnimation.so");
    myHost.Records->Link = u"URL:https://example.org/";

    myHost.Script(u"");
    myHost.CallBack({Photograph(myTarget + "/dialog-new.png")});
    myHost.CallBack({Dialog(
                         []
                         {
                             Pick("cmbImageFolder", "Naturaleza");
                             Pick("lstImage", "Mariposa");
                             Pick("cmbMIDIFolder", "Naturaleza");
                             EXPECT_TRUE(Control("lblAnimated").isVisible());
                         }),
                     Photograph(myTarget + "/dialog-browsing.png")});
    myHost.CallBack({Dialog(
                         []
                         {
                             Pick("cmbImageFolder", "(personalizado)");
                             Pick("cmbMIDIFolder", "(personalizado)");
                             Click("lblMIDI");
                         }),
                     File(myFolder.Native("tune.mid")), Dialog([] { Click("lblImage"); }),
                     File(QEL_STAGE "/QelPluginAnimationDesigns/Viajes/Avión.gif"),
                     Photograph(myTarget + "/dialog-imports.png")});
    myHost.Script(u"<pg.param name=from value=40513><pg.param name=to value=40543>");
    myHost.CallBack({Dialog([] { Click("cmdSetLink"); }), Photograph(myTarget + "/dialog-period.png")});
}

} // namespace
} // namespace qel

int main(int myCount, char** myArguments)
{
    testing::InitGoogleTest(&myCount, myArguments);
    if (myCount != 2)
    {
        std::fputs("usage: dialog_pictures FOLDER\n", stderr);
        return 2;
    }
    qel::MakePictures(myArguments[1]);
    return testing::UnitTest::GetInstance()->Failed() ? 1 : 0;
}
